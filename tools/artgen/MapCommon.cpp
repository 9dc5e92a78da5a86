#include "MapCommon.h"

#include <QRadialGradient>
#include <cmath>

namespace art::map {

QImage grassCanvas(int width, int height, bool stripesAcross)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(kGrass);
    QPainter p(&image);
    // Mowing stripes 8 m wide.
    const int band = int(m(8));
    const int extent = stripesAcross ? height : width;
    for (int i = 1; i * band < extent; i += 2) {
        if (stripesAcross)
            p.fillRect(0, i * band, width, band, kGrassStripe);
        else
            p.fillRect(i * band, 0, band, height, kGrassStripe);
    }
    return image;
}

QPainter &begin(QPainter &p, QImage &image)
{
    p.begin(&image);
    p.setRenderHint(QPainter::Antialiasing);
    return p;
}

void drawTree(QPainter &p, const QPointF &at, double radius)
{
    p.save();
    p.setPen(Qt::NoPen);
    // Shadow to the lower right, crown, and a lit side toward the upper left.
    p.setBrush(QColor(0, 0, 0, 40));
    p.drawEllipse(at + QPointF(radius * 0.3, radius * 0.3), radius, radius);
    p.setBrush(QColor(46, 88, 38));
    p.drawEllipse(at, radius, radius);
    p.setBrush(QColor(66, 112, 50));
    p.drawEllipse(at + QPointF(-radius * 0.25, -radius * 0.25), radius * 0.6, radius * 0.6);
    p.restore();
}

void scatterTrees(QPainter &p, const QRectF &area, const QPainterPath &keepOutAreas, int count, uint32_t seed)
{
    // Overlapping keep-out rectangles must add up, not cancel each other out.
    QPainterPath keepOut = keepOutAreas;
    keepOut.setFillRule(Qt::WindingFill);
    Rng rng(seed);
    int placed = 0;
    for (int attempt = 0; attempt < count * 20 && placed < count; ++attempt) {
        const double r = rng.range(m(2.2), m(4.0));
        // Y is drawn before X, the order the committed pictures were made in; inside one
        // argument list the order would be the compiler's choice.
        const double y = rng.range(area.top() + r, area.bottom() - r);
        const QPointF at(rng.range(area.left() + r, area.right() - r), y);
        const QRectF crown(at.x() - r - 4, at.y() - r - 4, 2 * r + 8, 2 * r + 8);
        if (keepOut.intersects(crown))
            continue;
        drawTree(p, at, r);
        ++placed;
    }
}

void drawKerb(QPainter &p, const QPainterPath &path, double width, double stripe)
{
    p.save();
    p.setBrush(Qt::NoBrush);
    QPen white(QColor(238, 238, 236), width);
    white.setJoinStyle(Qt::RoundJoin);
    p.strokePath(path, white);
    QPen red(QColor(200, 40, 36), width);
    red.setCapStyle(Qt::FlatCap);
    red.setJoinStyle(Qt::RoundJoin);
    red.setDashPattern({stripe / width, stripe / width});
    p.strokePath(path, red);
    p.restore();
}

void drawRoof(QPainter &p, const QRectF &r, uint32_t seed)
{
    p.save();
    p.setPen(QPen(QColor(104, 104, 110), 3));
    p.setBrush(QColor(172, 172, 178));
    p.drawRect(r);
    p.setPen(QPen(QColor(150, 150, 156), 1));
    p.drawRect(r.adjusted(7, 7, -7, -7));
    // Plant units and roof lights.
    Rng rng(seed);
    const int units = int(r.width() * r.height() / 9000) + 2;
    for (int i = 0; i < units; ++i) {
        const double w = rng.range(12, 30), h = rng.range(10, 22);
        const double y = rng.range(r.top() + 14, r.bottom() - 14 - h); // Y first, see scatterTrees
        const QPointF at(rng.range(r.left() + 14, r.right() - 14 - w), y);
        p.setPen(QPen(QColor(100, 100, 106), 1));
        p.setBrush(i % 3 ? QColor(140, 142, 148) : QColor(200, 214, 224));
        p.drawRect(QRectF(at, QSizeF(w, h)));
    }
    p.restore();
}

void drawMapGrid(QPainter &p, const QSize &size)
{
    p.save();
    p.setRenderHint(QPainter::Antialiasing, false);
    for (int i = 1; i * kGridPixels < std::max(size.width(), size.height()); ++i) {
        const int at = i * kGridPixels;
        p.setPen(QPen(QColor(255, 255, 255, i % 5 == 0 ? 44 : 22), 1));
        if (at < size.width())
            p.drawLine(at, 0, at, size.height() - 1);
        if (at < size.height())
            p.drawLine(0, at, size.width() - 1, at);
    }
    p.restore();
}

void drawScaleBar(QPainter &p, const QPointF &at)
{
    const double seg = m(10);
    const double barH = 7;
    p.save();
    p.setRenderHint(QPainter::Antialiasing, true);
    // A light card behind the bar keeps it readable on any ground.
    const QRectF card(at.x() - 10, at.y() - 40, 5 * seg + 20, 48);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(250, 250, 246, 210));
    p.drawRoundedRect(card, 5, 5);
    const double top = at.y() - barH - 2;
    for (int i = 0; i < 5; ++i) {
        p.setBrush(i % 2 ? QColor(250, 250, 250) : QColor(20, 20, 20));
        p.drawRect(QRectF(at.x() + i * seg, top, seg, barH));
    }
    p.setPen(QPen(QColor(20, 20, 20), 1.4));
    p.setBrush(Qt::NoBrush);
    p.drawRect(QRectF(at.x(), top, 5 * seg, barH));
    for (int i = 0; i <= 5; ++i) {
        const double x = at.x() + i * seg;
        const double tick = (i == 0 || i == 5) ? 9 : 5;
        p.drawLine(QPointF(x, top), QPointF(x, top - tick));
    }
    // "50 m" centred over the bar, and "0" at its start.
    const double textH = 14;
    QPen pen(QColor(20, 20, 20), 2.0);
    pen.setCapStyle(Qt::RoundCap);
    pen.setJoinStyle(Qt::RoundJoin);
    p.setPen(pen);
    const QString label = "50 m";
    p.translate(at.x() + 2.5 * seg - strokeTextWidth(label, textH) / 2, top - 12 - textH);
    p.drawPath(strokeText(label, textH));
    p.restore();
}

void speckle(QImage &image, const QColor &base, int amplitude, double density, uint32_t seed)
{
    const QRgb key = base.rgb();
    Rng rng(seed);
    const uint32_t threshold = uint32_t(density * 4294967295.0);
    for (int y = 0; y < image.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            if (row[x] != key)
                continue;
            const uint32_t r = rng.next();
            if (r >= threshold)
                continue;
            const int delta = (r & 1 ? 1 : -1) * (1 + int((r >> 1) % uint32_t(amplitude)));
            auto clamp = [](int v) { return std::clamp(v, 0, 255); };
            row[x] = qRgb(clamp(qRed(key) + delta), clamp(qGreen(key) + delta), clamp(qBlue(key) + delta));
        }
    }
}

void drawRoadArrow(QPainter &p, const QPointF &at, double angleDegrees, double length)
{
    p.save();
    p.translate(at);
    p.rotate(angleDegrees);
    const double w = length * 0.16;
    QPolygonF arrow{{0, -length / 2},
                    {w * 2.2, -length / 2 + w * 3},
                    {w / 2, -length / 2 + w * 3},
                    {w / 2, length / 2},
                    {-w / 2, length / 2},
                    {-w / 2, -length / 2 + w * 3},
                    {-w * 2.2, -length / 2 + w * 3}};
    p.setPen(Qt::NoPen);
    p.setBrush(kPaint);
    p.drawPolygon(arrow);
    p.restore();
}

} // namespace art::map
