// Markings painted or chalked on the ground: the start position, the line, and the
// chalk arrows. Turning arrows bend left; the editor mirrors them for right turns.

#include "Artwork.h"

#include <QPainterPathStroker>
#include <cmath>

namespace art {

namespace {

const QColor kChalk(246, 246, 240);
const QColor kChalkEdge(176, 176, 170);
constexpr double kChalkWidth = 0.28; // a hand-drawn stroke, metres
constexpr double kHeadLength = 0.72;
constexpr double kHeadHalfWidth = 0.46;

QPolygonF arrowHead(const QPointF &base, const QPointF &direction)
{
    const double len = std::hypot(direction.x(), direction.y());
    const QPointF d = direction / len;
    const QPointF n(-d.y(), d.x());
    return {base + d * kHeadLength, base + n * kHeadHalfWidth, base - n * kHeadHalfWidth};
}

QPainterPath strokeOf(const QPainterPath &centre, double width, Qt::PenCapStyle cap = Qt::FlatCap,
                      Qt::PenJoinStyle join = Qt::RoundJoin)
{
    QPainterPathStroker stroker;
    stroker.setWidth(width);
    stroker.setCapStyle(cap);
    stroker.setJoinStyle(join);
    stroker.setMiterLimit(4);
    return stroker.createStroke(centre);
}

// A centre line ending in an arrow head whose base sits at the line's end.
QPainterPath arrowShape(const QPainterPath &centre, const QPointF &headDirection)
{
    QPainterPath shape = strokeOf(centre, kChalkWidth);
    QPainterPath head;
    head.addPolygon(arrowHead(centre.currentPosition(), headDirection));
    head.closeSubpath();
    return shape.united(head).simplified();
}

// Chalk: off-white with a faint edge and a grainy, uneven coverage. The canvas is
// centred on the mark's bounding box.
QImage chalkImage(const QPainterPath &shape, uint32_t seed)
{
    const QRectF box = shape.boundingRect();
    MetreCanvas c(box.width(), box.height());
    QPainter &p = c.p();
    p.translate(-box.center());
    p.setPen(QPen(kChalkEdge, MetreCanvas::px(0.9)));
    p.setBrush(kChalk);
    p.drawPath(shape);

    p.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    p.setPen(Qt::NoPen);
    Rng rng(seed);
    const int grains = int(box.width() * box.height() * 170);
    for (int i = 0; i < grains; ++i) {
        const double y = rng.range(box.top(), box.bottom()); // Y first, see scatterTrees
        const QPointF at(rng.range(box.left(), box.right()), y);
        const double r = MetreCanvas::px(rng.range(0.35, 0.9));
        p.setBrush(QColor(0, 0, 0, int(rng.range(30, 90))));
        p.drawEllipse(at, r, r);
    }
    return c.finish();
}

} // namespace

// ---------------------------------------------------------------- start position

// The outline of a car's footprint, nose up, with its windows and a chevron on the
// bonnet so the facing reads at a glance.
QImage drawStart()
{
    const double w = 1.9, h = 4.3;
    MetreCanvas c(w, h);
    QPainter &p = c.p();
    QPainterPath body;
    body.moveTo(0, -2.1);
    body.cubicTo(0.5, -2.1, 0.84, -2.0, 0.87, -1.5);
    body.lineTo(0.89, 1.7);
    body.cubicTo(0.89, 2.02, 0.7, 2.1, 0.42, 2.1);
    body.lineTo(-0.42, 2.1);
    body.cubicTo(-0.7, 2.1, -0.89, 2.02, -0.89, 1.7);
    body.lineTo(-0.87, -1.5);
    body.cubicTo(-0.84, -2.0, -0.5, -2.1, 0, -2.1);
    body.closeSubpath();

    QPainterPath windows;
    windows.addPolygon(QPolygonF{{-0.68, -0.62}, {0.68, -0.62}, {0.6, -0.1}, {-0.6, -0.1}, {-0.68, -0.62}});
    windows.addPolygon(QPolygonF{{-0.6, 1.05}, {0.6, 1.05}, {0.66, 1.45}, {-0.66, 1.45}, {-0.6, 1.05}});
    QPainterPath chevron;
    chevron.moveTo(-0.4, -1.05);
    chevron.lineTo(0, -1.45);
    chevron.lineTo(0.4, -1.05);

    const QColor dark(24, 24, 26);
    const QColor paint(248, 248, 248);
    auto stroke = [&](const QPainterPath &path, double width) {
        QPen edge(dark, width + MetreCanvas::px(2.0));
        edge.setJoinStyle(Qt::RoundJoin);
        edge.setCapStyle(Qt::RoundCap);
        p.strokePath(path, edge);
    };
    auto paintOver = [&](const QPainterPath &path, double width) {
        QPen line(paint, width);
        line.setJoinStyle(Qt::RoundJoin);
        line.setCapStyle(Qt::RoundCap);
        p.strokePath(path, line);
    };
    // All dark edges first, so the white lines join cleanly where they meet.
    stroke(body, 0.1);
    stroke(windows, 0.06);
    stroke(chevron, 0.1);
    paintOver(body, 0.1);
    paintOver(windows, 0.06);
    paintOver(chevron, 0.1);
    return c.finish();
}

// ---------------------------------------------------------------- line

// A short bar the editor stretches to the line's length (its height is kept), so it
// is drawn pixel by pixel: white with a grey rim, greys only because it is tinted.
QImage drawLine()
{
    const int w = 23, h = 5;
    QImage img(w, h, QImage::Format_ARGB32);
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            // Only the four corner pixels are clear: clear end columns would turn into
            // long faded tails once the bar is stretched.
            const bool rimRow = (y == 0 || y == h - 1);
            const bool endCol = (x == 0 || x == w - 1);
            QRgb c = qRgba(255, 255, 255, 255);
            if (rimRow && endCol)
                c = qRgba(0, 0, 0, 0);
            else if (rimRow)
                c = qRgba(168, 168, 168, 255);
            else if (y == h - 2)
                c = qRgba(226, 226, 226, 255);
            img.setPixel(x, y, c);
        }
    }
    return img;
}

// ---------------------------------------------------------------- chalk

QImage drawChalkAhead()
{
    QPainterPath centre;
    centre.moveTo(0, 1.25);
    centre.lineTo(0, -0.5);
    return chalkImage(arrowShape(centre, {0, -1}), 0xC4A1);
}

// Two stacked chevrons: "straight on" without an arrow shaft.
QImage drawChalkAhead2()
{
    QPainterPath centre;
    for (double y : {-0.42, 0.42}) {
        centre.moveTo(-0.7, y + 0.42);
        centre.lineTo(0, y - 0.28);
        centre.lineTo(0.7, y + 0.42);
    }
    return chalkImage(strokeOf(centre, kChalkWidth, Qt::FlatCap, Qt::MiterJoin).simplified(), 0xC4A2);
}

// A gentle left bend: the head points up and to the left.
QImage drawChalk()
{
    QPainterPath centre;
    centre.moveTo(0.45, 1.3);
    centre.lineTo(0.45, 0.2);
    centre.cubicTo(0.45, -0.25, 0.25, -0.45, -0.05, -0.75);
    return chalkImage(arrowShape(centre, {-1, -1}), 0xC4A3);
}

// A square left turn: up, then a tight bend to point left.
QImage drawChalk2()
{
    QPainterPath centre;
    centre.moveTo(0.7, 1.25);
    centre.lineTo(0.7, -0.1);
    centre.cubicTo(0.7, -0.5, 0.5, -0.7, 0.1, -0.7);
    centre.lineTo(-0.35, -0.7);
    return chalkImage(arrowShape(centre, {-1, 0}), 0xC4A4);
}

// A U-turn to the left: up, over the top and back down.
QImage drawChalk3()
{
    QPainterPath centre;
    centre.moveTo(0.6, 1.3);
    centre.lineTo(0.6, -0.3);
    centre.arcTo(QRectF(-0.6, -0.9, 1.2, 1.2), 0, 180);
    centre.lineTo(-0.6, 0.25);
    return chalkImage(arrowShape(centre, {0, 1}), 0xC4A5);
}

// A straight stripe across the way, 4 m long.
QImage drawChalkLine()
{
    QPainterPath shape;
    shape.addRect(QRectF(-2.0, -0.12, 4.0, 0.24));
    return chalkImage(shape, 0xC4A6);
}

} // namespace art
