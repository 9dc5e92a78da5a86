#include "app/ui/EditbarIcons.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QtMath>
#include <functional>

namespace {

constexpr int IconSide = 24;
const QColor Ink(60, 64, 67);
const QColor Accent(38, 110, 220);

// One picture drawn in a 24 x 24 box at 1x and 2x.
QIcon drawn(const std::function<void(QPainter &)> &draw)
{
    QIcon icon;
    for (int scale : {1, 2}) {
        QPixmap pixmap(IconSide * scale, IconSide * scale);
        pixmap.fill(Qt::transparent);
        pixmap.setDevicePixelRatio(scale);
        QPainter p(&pixmap);
        p.setRenderHint(QPainter::Antialiasing);
        draw(p);
        p.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

// An arc from startDeg turning spanDeg (positive: counter-clockwise on screen), ending in a head.
void arcArrow(QPainter &p, QPointF centre, double radius, double startDeg, double spanDeg)
{
    QPen pen(Accent, 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    p.setPen(pen);
    p.setBrush(Qt::NoBrush);
    const QRectF box(centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius);
    QPainterPath arc;
    arc.arcMoveTo(box, startDeg);
    arc.arcTo(box, startDeg, spanDeg);
    p.drawPath(arc);

    // The head sits at the arc's end and points the way the arc travels there.
    const QPointF tip = arc.pointAtPercent(1.0);
    const double dir = qDegreesToRadians(arc.angleAtPercent(1.0));
    const QPointF ahead(std::cos(dir), -std::sin(dir));
    const QPointF side(-ahead.y(), ahead.x());
    const double len = 5.5;
    QPolygonF head;
    head << tip + ahead * 2.5 << tip - ahead * len + side * (len * 0.75) << tip - ahead * len - side * (len * 0.75);
    p.setPen(Qt::NoPen);
    p.setBrush(Accent);
    p.drawPolygon(head);
}

// A cone seen from above: the object being turned or flipped.
void marker(QPainter &p, QPointF centre)
{
    p.setPen(QPen(Ink, 1.2));
    p.setBrush(QColor(255, 140, 40));
    p.drawEllipse(centre, 3.2, 3.2);
}

} // namespace

namespace EditbarIcons {

QIcon rotate(bool clockwise)
{
    return drawn([clockwise](QPainter &p) {
        const QPointF c(12, 12.5);
        if (clockwise)
            arcArrow(p, c, 7.5, 120, -260);
        else
            arcArrow(p, c, 7.5, 60, 260);
        marker(p, c);
    });
}

QIcon rotateHalf()
{
    return drawn([](QPainter &p) {
        const QPointF c(12, 12.5);
        arcArrow(p, c, 7.5, 0, 180);
        p.setPen(QPen(Ink, 1.6, Qt::DashLine));
        p.drawLine(QPointF(3, 18.5), QPointF(21, 18.5));
        marker(p, c);
    });
}

QIcon flip(bool vertical)
{
    return drawn([vertical](QPainter &p) {
        if (vertical) {
            p.translate(12, 12);
            p.rotate(90);
            p.translate(-12, -12);
        }
        // The mirror axis, the original on the left and its mirror image on the right.
        p.setPen(QPen(Ink, 1.4, Qt::DashLine));
        p.drawLine(QPointF(12, 2.5), QPointF(12, 21.5));
        QPolygonF left;
        left << QPointF(10, 5) << QPointF(10, 19) << QPointF(2.5, 19);
        QPolygonF right;
        right << QPointF(14, 5) << QPointF(14, 19) << QPointF(21.5, 19);
        p.setPen(QPen(Accent, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.setBrush(Accent);
        p.drawPolygon(left);
        p.setBrush(Qt::NoBrush);
        p.drawPolygon(right);
    });
}

} // namespace EditbarIcons
