// The drag strip: eight lanes running up the picture, the start line near the bottom,
// a quarter-mile finish and a long shut-down area ending in a sand trap.

#include "MapCommon.h"

#include <QLinearGradient>

namespace art {

using namespace map;

namespace {

constexpr int kLanes = 8;
constexpr double kLaneWidth = 21; // pixels, about 3.7 m
constexpr double kStripLeft = 206;
constexpr double kStripRight = kStripLeft + kLanes * kLaneWidth;
constexpr double kStartY = 5440;
constexpr double kTopY = 130;     // end of the shut-down area
constexpr double kBottomY = 5900; // end of the staging lanes

double laneLeft(int lane)
{
    return kStripLeft + lane * kLaneWidth;
}
double distanceY(double metres)
{
    return kStartY - m(metres);
}

// Rubber laid down off the line: two dark tracks per lane, fading with distance.
void drawRubber(QPainter &p)
{
    const double fadeEnd = distanceY(110);
    for (int lane = 0; lane < kLanes; ++lane) {
        const double cx = laneLeft(lane) + kLaneWidth / 2;
        for (double dx : {-5.5, 5.5}) {
            QLinearGradient g(QPointF(0, kStartY + 8), QPointF(0, fadeEnd));
            g.setColorAt(0.0, QColor(20, 20, 22, 150));
            g.setColorAt(0.35, QColor(20, 20, 22, 80));
            g.setColorAt(1.0, QColor(20, 20, 22, 0));
            p.setBrush(g);
            p.drawRect(QRectF(cx + dx - 2.2, fadeEnd, 4.4, kStartY + 8 - fadeEnd));
        }
    }
}

void drawChequeredBand(QPainter &p, double y)
{
    const double cell = 7;
    for (int row = 0; row < 2; ++row) {
        for (int i = 0; i * cell < kStripRight - kStripLeft; ++i) {
            p.setBrush((i + row) % 2 ? QColor(20, 20, 20) : QColor(245, 245, 245));
            p.drawRect(QRectF(kStripLeft + i * cell, y + row * cell,
                              std::min(cell, kStripRight - kStripLeft - i * cell), cell));
        }
    }
}

// A grandstand: stepped rows of seats under a roof edge.
void drawStand(QPainter &p, const QRectF &r)
{
    p.setPen(QPen(QColor(90, 90, 96), 2));
    p.setBrush(QColor(160, 162, 168));
    p.drawRect(r);
    p.setPen(QPen(QColor(120, 122, 128), 1));
    for (double x = r.left() + 6; x < r.right() - 2; x += 6)
        p.drawLine(QPointF(x, r.top() + 2), QPointF(x, r.bottom() - 2));
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(200, 60, 50));
    p.drawRect(QRectF(r.left(), r.top(), 6, r.height()));
}

} // namespace

QImage drawDragStrip()
{
    const QSize size(580, 6260);
    QImage image = grassCanvas(size.width(), size.height());
    QPainter p;
    begin(p, image);
    p.setPen(Qt::NoPen);

    // Paddock at the bottom, return road on the right, and the crossovers joining them.
    const QRectF paddock(40, kBottomY, 500, 300);
    const QRectF returnRoad(462, kTopY + 80, m(9), kBottomY - kTopY - 80);
    p.setBrush(kAsphalt);
    p.drawRect(paddock);
    p.drawRect(returnRoad);
    p.drawRect(QRectF(kStripRight, kTopY + 80, returnRoad.right() - kStripRight, m(9)));
    // Sand trap and catch net beyond the shut-down area.
    p.setBrush(kGravel);
    p.drawRect(QRectF(kStripLeft - 25, 30, kStripRight - kStripLeft + 50, kTopY - 30 + 1));
    QPen net(QColor(40, 40, 44), 3);
    net.setDashPattern({2, 1.5});
    p.setPen(net);
    p.drawLine(QPointF(kStripLeft - 25, 30), QPointF(kStripRight + 25, 30));
    p.setPen(Qt::NoPen);

    // Concrete shoulders, then the lanes.
    p.setBrush(kConcrete);
    p.drawRect(QRectF(kStripLeft - 11, kTopY, kStripRight - kStripLeft + 22, kBottomY - kTopY));
    p.setBrush(kAsphalt);
    p.drawRect(QRectF(kStripLeft, kTopY, kStripRight - kStripLeft, kBottomY - kTopY));
    // Concrete launch pad from the burnout box to 100 m, then the burnout box itself.
    p.setBrush(QColor(138, 138, 134));
    p.drawRect(QRectF(kStripLeft, distanceY(100), kStripRight - kStripLeft, m(100) + 160));
    p.setBrush(QColor(70, 78, 90));
    p.drawRect(QRectF(kStripLeft, kStartY + 40, kStripRight - kStripLeft, 80));
    drawRubber(p);

    // Lane lines: solid edges and centre, dashed between the other lanes.
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(kPaint, 2));
    p.drawLine(QPointF(kStripLeft + 1, kTopY), QPointF(kStripLeft + 1, kBottomY));
    p.drawLine(QPointF(kStripRight - 1, kTopY), QPointF(kStripRight - 1, kBottomY));
    for (int lane = 1; lane < kLanes; ++lane) {
        const double x = laneLeft(lane);
        if (lane == kLanes / 2) {
            p.setPen(QPen(kYellowPaint, 2));
        } else {
            QPen dash(kPaint, 1.5);
            dash.setDashPattern({m(3) / 1.5, m(6) / 1.5});
            p.setPen(dash);
        }
        p.drawLine(QPointF(x, kTopY), QPointF(x, kBottomY));
    }

    // Start line with a pre-stage line behind it, eighth-mile line and the finish.
    p.setPen(Qt::NoPen);
    p.setBrush(kPaint);
    p.drawRect(QRectF(kStripLeft, kStartY - 2, kStripRight - kStripLeft, 4));
    p.drawRect(QRectF(kStripLeft, kStartY + 9, kStripRight - kStripLeft, 1.5));
    QPen eighth(kPaint, 3);
    eighth.setDashPattern({2, 1.5});
    p.setPen(eighth);
    p.drawLine(QPointF(kStripLeft, distanceY(201.2)), QPointF(kStripRight, distanceY(201.2)));
    p.setPen(Qt::NoPen);
    drawChequeredBand(p, distanceY(402.3) - 7);
    // Timing marks on both shoulders: 60 ft, 330 ft, 660 ft, 1000 ft and 1320 ft.
    p.setBrush(kPaint);
    for (double metres : {18.3, 100.6, 201.2, 304.8, 402.3}) {
        p.drawRect(QRectF(kStripLeft - 10, distanceY(metres) - 1.5, 8, 3));
        p.drawRect(QRectF(kStripRight + 2, distanceY(metres) - 1.5, 8, 3));
    }

    // Concrete walls along both sides.
    p.setPen(QPen(QColor(96, 96, 96), 1));
    p.setBrush(QColor(214, 214, 210));
    p.drawRect(QRectF(kStripLeft - 15, kTopY, 4, kStartY + 260 - kTopY));
    p.drawRect(QRectF(kStripRight + 11, kTopY, 4, kStartY + 260 - kTopY));

    // Distance boards every 100 m on the left.
    for (int hundred = 1; hundred <= 9; ++hundred) {
        const double y = distanceY(hundred * 100.0);
        const QRectF board(146, y - 11, 40, 22);
        p.setPen(QPen(QColor(30, 30, 30), 1.5));
        p.setBrush(QColor(248, 248, 244));
        p.drawRect(board);
        const QString text = QString::number(hundred * 100);
        QPen ink(QColor(20, 20, 20), 1.8);
        ink.setCapStyle(Qt::RoundCap);
        ink.setJoinStyle(Qt::RoundJoin);
        p.setPen(ink);
        p.setBrush(Qt::NoBrush);
        p.save();
        p.translate(board.center().x() - strokeTextWidth(text, 12) / 2, board.center().y() - 6);
        p.drawPath(strokeText(text, 12));
        p.restore();
    }

    // Stands beside the start, the control tower, and a paddock building.
    drawStand(p, QRectF(70, 4980, 60, 420));
    drawRoof(p, QRectF(60, kStartY + 40, 90, 90), 31);
    drawRoof(p, QRectF(70, 6060, 220, 110), 32);
    drawRoadArrow(p, QPointF(returnRoad.center().x(), 3000), 180, 40);
    drawRoadArrow(p, QPointF(returnRoad.center().x(), 5000), 180, 40);

    QPainterPath keepOut;
    keepOut.addRect(QRectF(kStripLeft - 30, 0, returnRoad.right() - kStripLeft + 40, size.height()));
    keepOut.addRect(paddock);
    keepOut.addRect(QRectF(60, 4970, 130, 570));
    keepOut.addRect(QRectF(140, 0, 60, size.height()));
    keepOut.addRect(QRectF(0, 6190, 340, 70));
    scatterTrees(p, QRectF(0, 0, size.width(), size.height()), keepOut, 110, 0xD0001);
    p.end();

    speckle(image, kAsphalt, 3, 0.05, 0xD0002);
    begin(p, image);
    drawMapGrid(p, size);
    drawScaleBar(p, QPointF(30, 6245));
    p.end();
    return image;
}

} // namespace art
