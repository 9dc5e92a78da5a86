// The autocross area and the skid pad: open asphalt surrounded by kerbs and grass.

#include "MapCommon.h"

#include <QRadialGradient>
#include <cmath>

namespace art {

using namespace map;

// A large open asphalt area with a paddock at the bottom left, an entry road on the
// right, gravel run-off at the far corners, and trees on the surrounding grass.
QImage drawAutocross()
{
    const QSize size(1630, 2940);
    QImage image = grassCanvas(size.width(), size.height());
    QPainter p;
    begin(p, image);

    QPainterPath area;
    area.addRoundedRect(QRectF(150, 170, 1330, 2450), 170, 170);
    QPainterPath paddock;
    paddock.addRoundedRect(QRectF(150, 2380, 640, 400), 60, 60);
    QPainterPath entry;
    entry.addRect(QRectF(1400, 1290, 240, m(12)));
    const QPainterPath surface = area.united(paddock).united(entry).simplified();

    // Gravel run-off round the far end, edged by a tyre wall.
    QPainterPath runOff;
    runOff.addRoundedRect(QRectF(95, 115, 1440, 640), 225, 225);
    p.setPen(Qt::NoPen);
    p.setBrush(kGravel);
    p.drawPath(runOff);
    QPen tyreWall(QColor(30, 30, 32), 7, Qt::DotLine, Qt::RoundCap);
    p.setBrush(Qt::NoBrush);
    p.save();
    p.setClipRect(QRectF(0, 0, size.width(), 560));
    p.setPen(tyreWall);
    p.drawPath(runOff);
    p.restore();

    p.setPen(Qt::NoPen);
    p.setBrush(kAsphalt);
    p.drawPath(surface);
    p.save();
    p.setClipPath(surface);
    // Resurfaced patches, a shade lighter.
    p.setBrush(kAsphaltPatch);
    for (const QRectF &r :
         {QRectF(420, 520, 380, 260), QRectF(980, 1100, 300, 520), QRectF(300, 1820, 520, 220),
          QRectF(1050, 2200, 260, 300), QRectF(640, 1300, 170, 170)})
        p.drawRoundedRect(r, 24, 24);
    // Rubber left by earlier runs: long, faint sweeping arcs.
    Rng rng(0xA0003);
    p.setBrush(Qt::NoBrush);
    for (int i = 0; i < 16; ++i) {
        const double cy = rng.range(450, 2250); // Y first, see scatterTrees
        const QPointF c(rng.range(350, 1280), cy);
        const double r = rng.range(120, 420);
        const double start = rng.range(0, 360);
        p.setPen(QPen(QColor(24, 24, 26, 24), rng.range(5, 9), Qt::SolidLine, Qt::RoundCap));
        for (double offset : {0.0, 9.0})
            p.drawArc(QRectF(c.x() - r - offset, c.y() - r - offset, 2 * (r + offset), 2 * (r + offset)),
                      int(start * 16), int(rng.range(40, 110) * 16));
    }
    p.restore();

    // The paddock is divided from the course by a faded yellow line.
    QPen boundary(kYellowPaint, 3);
    boundary.setDashPattern({6, 4});
    p.setPen(boundary);
    p.drawLine(QPointF(170, 2380), QPointF(790, 2380));
    // Faded parking marks in the paddock.
    p.setPen(QPen(QColor(200, 200, 194), 2));
    for (int i = 0; i < 20; ++i) {
        const double x = 200 + i * m(5);
        p.drawLine(QPointF(x, 2650), QPointF(x, 2650 + m(10)));
    }

    // Kerbs: red and white round the course, except where the paddock and the entry
    // road open onto it; plain concrete round the paddock and the road.
    QPainterPath openings;
    openings.addRect(QRectF(140, 2380, 660, 410));
    openings.addRect(entry.boundingRect().adjusted(0, 4, 0, -4));
    QPainterPath everywhere;
    everywhere.addRect(QRectF(0, 0, size.width(), size.height()));
    p.save();
    p.setClipPath(everywhere.subtracted(openings));
    drawKerb(p, area, 8, 18);
    p.restore();
    p.save();
    p.setClipPath(everywhere.subtracted(area));
    p.setPen(QPen(kKerbGrey, 5));
    p.setBrush(Qt::NoBrush);
    p.drawPath(paddock);
    p.drawPath(entry);
    p.restore();

    // Paddock buildings and the trees on the grass.
    drawRoof(p, QRectF(860, 2700, 300, 150), 11);
    drawRoof(p, QRectF(1200, 2700, 190, 150), 12);
    QPainterPath keepOut = surface.united(runOff);
    keepOut.addRect(QRectF(860, 2700, 530, 150));
    keepOut.addRect(QRectF(1280, 2860, 340, 80)); // the scale bar
    scatterTrees(p, QRectF(0, 0, size.width(), size.height()), keepOut, 70, 0xA0001);
    p.end();

    speckle(image, kAsphalt, 3, 0.05, 0xA0002);
    begin(p, image);
    drawMapGrid(p, size);
    drawScaleBar(p, QPointF(1300, 2920));
    p.end();
    return image;
}

// A square pad with a large, polished wet circle in the middle, marked with painted
// rings, and an access road from the bottom.
QImage drawSkidPad()
{
    const QSize size(1050, 1050);
    QImage image = grassCanvas(size.width(), size.height());
    QPainter p;
    begin(p, image);

    const QPointF centre(525, 520);
    QPainterPath pad;
    pad.addRoundedRect(QRectF(60, 55, 930, 930), 90, 90);
    p.setPen(Qt::NoPen);
    p.setBrush(kAsphalt);
    p.drawRect(QRectF(470, 980, 110, 80)); // access road
    p.drawPath(pad);

    // The wet surface: darker, bluish, with soft reflections.
    const double wetR = 405;
    QRadialGradient wet(centre, wetR);
    wet.setColorAt(0.0, QColor(64, 74, 88));
    wet.setColorAt(0.85, QColor(58, 68, 82));
    wet.setColorAt(1.0, QColor(50, 58, 70));
    p.setBrush(wet);
    p.drawEllipse(centre, wetR, wetR);
    p.save();
    p.setClipRegion(
        QRegion(QRect(int(centre.x() - wetR), int(centre.y() - wetR), int(2 * wetR), int(2 * wetR)),
                QRegion::Ellipse));
    for (int i = 0; i < 5; ++i) {
        p.setBrush(QColor(200, 220, 240, 6 + 2 * i));
        p.drawEllipse(QPointF(centre.x() - 140 + i * 30, centre.y() - 160 + i * 25), 220 - i * 40,
                      90 - i * 16);
    }
    p.restore();
    p.setPen(QPen(QColor(40, 46, 56), 3));
    p.setBrush(Qt::NoBrush);
    p.drawEllipse(centre, wetR, wetR);

    // Painted rings: the main circle, an inner guide and a centre mark.
    p.setPen(QPen(kPaint, 5));
    p.drawEllipse(centre, m(52), m(52));
    QPen guide(kYellowPaint, 3);
    guide.setDashPattern({5, 4});
    p.setPen(guide);
    p.drawEllipse(centre, m(26), m(26));
    p.setPen(QPen(kPaint, 3));
    p.drawLine(centre + QPointF(-14, 0), centre + QPointF(14, 0));
    p.drawLine(centre + QPointF(0, -14), centre + QPointF(0, 14));
    // Sprinkler heads that keep the surface wet.
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(30, 32, 36));
    for (int i = 0; i < 12; ++i) {
        const double a = i * M_PI / 6;
        p.drawEllipse(centre + QPointF(std::cos(a), std::sin(a)) * m(40), 3.5, 3.5);
    }
    drawRoadArrow(p, QPointF(525, 1010), 0, 34);

    // No kerb across the access road.
    p.save();
    p.setClipRegion(QRegion(0, 0, size.width(), size.height()).subtracted(QRegion(470, 960, 110, 100)));
    drawKerb(p, pad, 7, 17);
    p.restore();
    QPainterPath keepOut = pad;
    keepOut.addRect(QRectF(440, 970, 170, 80));
    scatterTrees(p, QRectF(0, 0, size.width(), size.height()), keepOut, 14, 0xA0101);
    p.end();

    speckle(image, kAsphalt, 3, 0.05, 0xA0102);
    begin(p, image);
    drawMapGrid(p, size);
    drawScaleBar(p, QPointF(110, 950));
    p.end();
    return image;
}

} // namespace art
