// The car park: a store at the top, rows of parking bays either side of a central
// boulevard, aisles with direction arrows, and an entrance road at the bottom.

#include "MapCommon.h"

namespace art {

using namespace map;

namespace {

constexpr double kBay = 14;      // bay width in pixels, about 2.5 m
constexpr double kBayDepth = 28; // about 5 m
constexpr double kAisle = 42;    // about 7.4 m
constexpr int kBaysPerRow = 30;
constexpr int kDoubleRows = 14;
constexpr double kRowsTop = 460;
const double kBlockLeft[2] = {120, 680};

double rowTop(int row)
{
    return kRowsTop + row * (2 * kBayDepth + 1 + kAisle);
}

// One double row of bays, back to back: bay dividers and the shared back line.
void drawDoubleRow(QPainter &p, double left, double top, int bays)
{
    const double right = left + bays * kBay;
    const double mid = top + kBayDepth + 0.5;
    QPen line(kPaint, 1.6);
    line.setCapStyle(Qt::FlatCap);
    p.setPen(line);
    p.drawLine(QPointF(left, mid), QPointF(right, mid));
    for (int i = 0; i <= bays; ++i) {
        const double x = left + i * kBay;
        p.drawLine(QPointF(x, top), QPointF(x, top + 2 * kBayDepth + 1));
    }
}

// A single row along the bottom edge, bays opening upward.
void drawSingleRow(QPainter &p, double left, double bottom, int bays)
{
    QPen line(kPaint, 1.6);
    line.setCapStyle(Qt::FlatCap);
    p.setPen(line);
    for (int i = 0; i <= bays; ++i) {
        const double x = left + i * kBay;
        p.drawLine(QPointF(x, bottom - kBayDepth), QPointF(x, bottom));
    }
}

void drawIsland(QPainter &p, const QRectF &r, bool tree)
{
    p.setPen(QPen(kKerbGrey, 2));
    p.setBrush(kGrass);
    p.drawRoundedRect(r, 5, 5);
    if (tree)
        drawTree(p, r.center(), m(2.6));
}

void drawZebra(QPainter &p, double cx, double top, double bottom)
{
    p.setPen(Qt::NoPen);
    p.setBrush(kPaint);
    for (double y = top + 3; y + 3 <= bottom - 2; y += 7)
        p.drawRect(QRectF(cx - 12, y, 24, 3.5));
}

} // namespace

QImage drawCarPark()
{
    const QSize size(1220, 1970);
    QImage image = grassCanvas(size.width(), size.height(), false);
    QPainter p;
    begin(p, image);

    // The store and the pavement in front of it.
    p.setPen(Qt::NoPen);
    p.setBrush(kConcrete);
    p.drawRect(QRectF(80, 340, 1060, 62));
    drawRoof(p, QRectF(110, 56, 1000, 284), 41);
    // Entrances: dark canopies over the doors.
    p.setBrush(QColor(60, 64, 72));
    p.drawRect(QRectF(280, 334, 70, 16));
    p.drawRect(QRectF(870, 334, 70, 16));

    // Asphalt, the entrance road, and the kerb around them.
    QPainterPath surface;
    surface.addRoundedRect(QRectF(60, 402, 1100, 1508), 30, 30);
    QPainterPath road;
    road.addRect(QRectF(540, 1900, 140, 80));
    p.setBrush(kAsphalt);
    p.drawPath(surface.united(road));
    p.save();
    p.setClipRegion(QRegion(0, 0, size.width(), size.height()).subtracted(QRegion(543, 1880, 134, 90)));
    p.setPen(QPen(kKerbGrey, 5));
    p.setBrush(Qt::NoBrush);
    p.drawPath(surface);
    p.setPen(QPen(kKerbGrey, 3));
    p.drawLine(QPointF(540, 1908), QPointF(540, 1970));
    p.drawLine(QPointF(680, 1908), QPointF(680, 1970));
    p.restore();
    p.setPen(Qt::NoPen);

    // The boulevard's planted median, broken where the aisles cross it.
    for (int row = 0; row < kDoubleRows; ++row)
        drawIsland(p, QRectF(590, rowTop(row) + 2, 40, 2 * kBayDepth - 3), row % 2 == 0);
    drawIsland(p, QRectF(590, rowTop(kDoubleRows) + 10, 40, 1990 - rowTop(kDoubleRows)), true);

    // Bays: disabled bays nearest the doors, islands at the row ends, lamps on the
    // back lines.
    for (int row = 0; row < kDoubleRows; ++row) {
        const double top = rowTop(row);
        for (int side = 0; side < 2; ++side) {
            const double left = kBlockLeft[side];
            if (row == 0) {
                p.setPen(Qt::NoPen);
                p.setBrush(QColor(40, 92, 180));
                const double x = side == 0 ? left + (kBaysPerRow - 6) * kBay : left;
                p.drawRect(QRectF(x, top, 6 * kBay, kBayDepth));
            }
            drawDoubleRow(p, left, top, kBaysPerRow);
            drawIsland(
                p,
                QRectF(side == 0 ? left - 16 : left + kBaysPerRow * kBay + 2, top + 1, 14, 2 * kBayDepth - 1),
                row % 3 == 1);
            p.setPen(QPen(QColor(30, 30, 34), 1));
            p.setBrush(QColor(250, 236, 170));
            for (int lamp = 1; lamp < 3; ++lamp)
                p.drawEllipse(QPointF(left + lamp * 10 * kBay, top + kBayDepth + 0.5), 3, 3);
        }
        // Direction arrows in the aisle below the row, alternating.
        const double aisleY = top + 2 * kBayDepth + 1 + kAisle / 2;
        if (row + 1 < kDoubleRows) {
            drawRoadArrow(p, QPointF(330, aisleY), row % 2 ? 90 : 270, 30);
            drawRoadArrow(p, QPointF(890, aisleY), row % 2 ? 270 : 90, 30);
        }
    }
    drawSingleRow(p, kBlockLeft[0], 1906, kBaysPerRow);
    drawSingleRow(p, kBlockLeft[1], 1906, kBaysPerRow);

    // Boulevard arrows, and crossings from the doors.
    drawRoadArrow(p, QPointF(565, 1700), 0, 36);
    drawRoadArrow(p, QPointF(655, 1700), 180, 36);
    drawRoadArrow(p, QPointF(565, 900), 0, 36);
    drawRoadArrow(p, QPointF(655, 900), 180, 36);
    drawZebra(p, 315, 404, 458);
    drawZebra(p, 905, 404, 458);
    // Give-way line at the exit.
    QPen giveWay(kPaint, 3);
    giveWay.setDashPattern({2, 1.5});
    p.setPen(giveWay);
    p.drawLine(QPointF(542, 1930), QPointF(588, 1930));

    QPainterPath keepOut = surface.united(road);
    keepOut.addRect(QRectF(80, 40, 1060, 362));
    keepOut.addRect(QRectF(80, 1910, 320, 60)); // the scale bar
    p.end();

    speckle(image, kAsphalt, 3, 0.05, 0xB0002);
    begin(p, image);
    scatterTrees(p, QRectF(0, 0, size.width(), size.height()), keepOut, 50, 0xB0001);
    drawMapGrid(p, size);
    drawScaleBar(p, QPointF(100, 1958));
    p.end();
    return image;
}

} // namespace art
