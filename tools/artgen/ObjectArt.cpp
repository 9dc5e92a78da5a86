// Boards, blocks, signs, the ramp and the marshalls, seen from above at kObjectScale
// pixels per metre. Front (the direction of travel) is up.

#include "Artwork.h"

#include <QLinearGradient>
#include <QPainterPathStroker>
#include <QRadialGradient>
#include <cmath>

namespace art {

namespace {

// ---------------------------------------------------------------- banners

constexpr double kBannerLength = 4.0;
constexpr double kBannerDepth = 0.5;

QRectF bannerRect()
{
    return QRectF(-kBannerLength / 2, -kBannerDepth / 2, kBannerLength, kBannerDepth);
}

// Board and frame; the motif is painted between the two, clipped to the board.
template <typename Motif> QImage banner(const QColor &board, Motif motif)
{
    MetreCanvas c(kBannerLength, kBannerDepth);
    QPainter &p = c.p();
    const QRectF r = bannerRect();
    p.setPen(Qt::NoPen);
    p.setBrush(board);
    p.drawRect(r);
    p.save();
    p.setClipRect(r);
    motif(p, r);
    p.restore();
    p.setBrush(Qt::NoBrush);
    p.setPen(outlinePen(1.0));
    p.drawRect(r);
    return c.finish();
}

void bannerText(QPainter &p, const QString &text, const QColor &color, double height)
{
    const double w = strokeTextWidth(text, height);
    p.save();
    p.translate(-w / 2, -height / 2);
    QPen pen(color, height * 0.2);
    pen.setCapStyle(Qt::RoundCap);
    pen.setJoinStyle(Qt::RoundJoin);
    p.setPen(pen);
    p.setBrush(Qt::NoBrush);
    p.drawPath(strokeText(text, height));
    p.restore();
}

// ---------------------------------------------------------------- marshalls

const QColor kHiVis(255, 112, 0);
const QColor kReflective(222, 226, 230);
const QColor kSkin(226, 184, 146);

void paintMarshall(QPainter &p, bool pointing)
{
    // Arms first, so the body overlaps the shoulders; hands forward show the facing.
    p.setPen(outlinePen(0.8));
    for (double side : {-1.0, 1.0}) {
        if (pointing && side < 0)
            continue;
        p.setBrush(kSkin);
        p.drawEllipse(QPointF(side * 0.26, -0.12), 0.045, 0.045);
        p.setBrush(kHiVis.darker(115));
        p.drawEllipse(QPointF(side * 0.265, -0.01), 0.065, 0.1);
    }
    if (pointing) {
        QPainterPath arm;
        arm.moveTo(-0.24, -0.02);
        arm.lineTo(-0.62, -0.06);
        QPainterPathStroker stroker;
        stroker.setWidth(0.11);
        stroker.setCapStyle(Qt::RoundCap);
        p.setBrush(kHiVis.darker(115));
        p.drawPath(stroker.createStroke(arm));
        p.setBrush(kSkin);
        p.drawEllipse(QPointF(-0.68, -0.065), 0.05, 0.045);
    }
    // Shoulders in a hi-vis top with a reflective band across the back.
    QPainterPath body;
    body.addRoundedRect(QRectF(-0.28, -0.13, 0.56, 0.28), 0.12, 0.12);
    p.setBrush(kHiVis);
    p.drawPath(body);
    p.save();
    p.setClipPath(body);
    p.setPen(Qt::NoPen);
    p.setBrush(kReflective);
    p.drawRect(QRectF(-0.3, 0.06, 0.6, 0.035));
    p.restore();
    p.setBrush(Qt::NoBrush);
    p.setPen(outlinePen(0.8));
    p.drawPath(body);
    // Head in a white cap; the peak shows which way the marshall faces.
    p.setPen(outlinePen(0.8));
    p.setBrush(QColor(236, 236, 232));
    QPainterPath peak;
    peak.moveTo(-0.085, -0.05);
    peak.cubicTo(-0.085, -0.2, 0.085, -0.2, 0.085, -0.05);
    peak.closeSubpath();
    p.drawPath(peak);
    p.setBrush(QColor(250, 250, 248));
    p.drawEllipse(QPointF(0, 0.0), 0.115, 0.115);
}

} // namespace

// ---------------------------------------------------------------- banners

QImage drawBannerRsc()
{
    return banner(QColor(206, 28, 40), [](QPainter &p, const QRectF &r) {
        p.setBrush(Qt::white);
        p.drawRect(QRectF(r.left(), r.top(), r.width(), 0.06));
        p.drawRect(QRectF(r.left(), r.bottom() - 0.06, r.width(), 0.06));
        bannerText(p, "RSC", Qt::white, 0.26);
    });
}

QImage drawBannerCromo()
{
    return banner(QColor(252, 204, 22), [](QPainter &p, const QRectF &r) {
        p.setBrush(QColor(24, 24, 26));
        for (double x : {r.left(), r.right() - 0.5}) {
            p.drawRect(QRectF(x, r.top(), 0.5, r.height()));
        }
        bannerText(p, "CROMO", QColor(24, 24, 26), 0.26);
    });
}

QImage drawBannerAd1()
{
    return banner(QColor(22, 92, 204), [](QPainter &p, const QRectF &r) {
        p.setBrush(Qt::white);
        for (int i = 0; i < 8; ++i) {
            const double cx = r.left() + 0.25 + i * 0.5;
            QPolygonF diamond{{cx, -0.16}, {cx + 0.15, 0}, {cx, 0.16}, {cx - 0.15, 0}};
            p.drawPolygon(diamond);
        }
    });
}

QImage drawBannerAd2()
{
    return banner(QColor(26, 140, 64), [](QPainter &p, const QRectF &r) {
        p.setBrush(QColor(250, 240, 120));
        for (int i = 0; i < 14; ++i) {
            const double x = r.left() - 0.2 + i * 0.32;
            QPolygonF slash{{x, r.bottom()}, {x + 0.12, r.bottom()}, {x + 0.32, r.top()}, {x + 0.2, r.top()}};
            p.drawPolygon(slash);
        }
    });
}

QImage drawBannerAd3()
{
    return banner(QColor(112, 38, 164), [](QPainter &p, const QRectF &r) {
        p.setBrush(QColor(255, 176, 30));
        for (int i = 0; i < 6; ++i)
            p.drawEllipse(QPointF(r.left() + 0.35 + i * 0.66, 0), 0.15, 0.15);
        p.setBrush(QColor(112, 38, 164));
        for (int i = 0; i < 6; ++i)
            p.drawEllipse(QPointF(r.left() + 0.35 + i * 0.66, 0), 0.06, 0.06);
    });
}

// ---------------------------------------------------------------- bale

QImage drawBale()
{
    const double w = 1.2, h = 0.7;
    MetreCanvas c(w, h);
    QPainter &p = c.p();
    const QRectF r(-w / 2, -h / 2, w, h);
    QPainterPath shape;
    shape.addRoundedRect(r, 0.06, 0.06);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(222, 186, 92));
    p.drawPath(shape);
    p.save();
    p.setClipPath(shape);
    // Loose straw: short strands, mostly along the bale.
    Rng rng(0xBA1E);
    for (int i = 0; i < 140; ++i) {
        const double y = rng.range(-h / 2, h / 2); // Y first, see scatterTrees
        const QPointF a(rng.range(-w / 2, w / 2), y);
        const double angle = rng.range(-0.35, 0.35);
        const double len = rng.range(0.06, 0.16);
        const bool dark = rng.uniform() < 0.55;
        p.setPen(QPen(dark ? QColor(176, 136, 56) : QColor(246, 220, 140), MetreCanvas::px(0.8)));
        p.drawLine(a, a + QPointF(std::cos(angle) * len, std::sin(angle) * len));
    }
    // Two bands of twine.
    p.setPen(QPen(QColor(112, 80, 34), MetreCanvas::px(1.6)));
    p.drawLine(QPointF(-0.3, -h / 2), QPointF(-0.3, h / 2));
    p.drawLine(QPointF(0.3, -h / 2), QPointF(0.3, h / 2));
    p.restore();
    p.setBrush(Qt::NoBrush);
    p.setPen(outlinePen(1.0, QColor(92, 64, 26)));
    p.drawPath(shape);
    return c.finish();
}

// ---------------------------------------------------------------- posts

namespace {

QImage post(const QColor &cap, const QColor &ring, const QColor &outline)
{
    const double r = 0.15;
    MetreCanvas c(2 * r, 2 * r);
    QPainter &p = c.p();
    QRadialGradient g(QPointF(0, 0), r, QPointF(-r * 0.4, -r * 0.4));
    g.setColorAt(0.0, cap.lighter(140));
    g.setColorAt(1.0, cap);
    p.setPen(outlinePen(1.0, outline));
    p.setBrush(g);
    p.drawEllipse(QPointF(0, 0), r, r);
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(ring, 0.045));
    p.drawEllipse(QPointF(0, 0), r * 0.55, r * 0.55);
    return c.finish();
}

} // namespace

QImage drawPost()
{
    return post(QColor(36, 36, 40), QColor(250, 250, 250), QColor(10, 10, 12));
}
// Greys only: the editor tints it.
QImage drawPostColor()
{
    return post(QColor(222, 222, 222), QColor(160, 160, 160), QColor(52, 52, 52));
}

// ---------------------------------------------------------------- barriers

namespace {

// A concrete block: wide foot, sloping faces and a narrow top, seen from above.
void paintBlock(QPainter &p, double w, double h, const QColor &foot, const QColor &top, const QColor &outline)
{
    const QRectF r(-w / 2, -h / 2, w, h);
    QLinearGradient faces(QPointF(0, -h / 2), QPointF(0, h / 2));
    faces.setColorAt(0.0, foot.lighter(108));
    faces.setColorAt(0.5, top);
    faces.setColorAt(1.0, foot.darker(108));
    p.setPen(outlinePen(1.0, outline));
    p.setBrush(faces);
    p.drawRoundedRect(r, 0.04, 0.04);
    p.setPen(outlinePen(0.6, foot.darker(125)));
    p.setBrush(top.lighter(106));
    p.drawRect(QRectF(-w / 2 + 0.03, -0.08, w - 0.06, 0.16));
}

} // namespace

// Greys only: the editor tints it.
QImage drawBarrier()
{
    const double w = 1.6, h = 0.6;
    MetreCanvas c(w, h);
    QPainter &p = c.p();
    paintBlock(p, w, h, QColor(188, 188, 188), QColor(238, 238, 238), QColor(64, 64, 64));
    // Lifting holes on the top.
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(150, 150, 150));
    p.drawEllipse(QPointF(-0.45, 0), 0.04, 0.04);
    p.drawEllipse(QPointF(0.45, 0), 0.04, 0.04);
    return c.finish();
}

// A long run of concrete with a red and white painted top.
QImage drawBarrierLong()
{
    const double w = 4.0, h = 0.6;
    MetreCanvas c(w, h);
    QPainter &p = c.p();
    paintBlock(p, w, h, QColor(164, 164, 158), QColor(206, 206, 200), QColor(40, 40, 40));
    p.setPen(Qt::NoPen);
    for (int i = 0; i < 8; ++i) {
        p.setBrush(i % 2 ? QColor(250, 250, 250) : QColor(214, 32, 32));
        p.drawRect(QRectF(-w / 2 + 0.03 + i * (w - 0.06) / 8, -0.08, (w - 0.06) / 8, 0.16));
    }
    // Joints between the sections.
    p.setPen(QPen(QColor(90, 90, 86), MetreCanvas::px(0.8)));
    for (double x : {-1.0, 0.0, 1.0})
        p.drawLine(QPointF(x, -h / 2), QPointF(x, h / 2));
    return c.finish();
}

// ---------------------------------------------------------------- keep left sign

QImage drawKeep()
{
    const double r = 0.38;
    MetreCanvas c(2 * r, 2 * r);
    QPainter &p = c.p();
    p.setPen(outlinePen(1.0));
    p.setBrush(Qt::white);
    p.drawEllipse(QPointF(0, 0), r, r);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(16, 82, 196));
    p.drawEllipse(QPointF(0, 0), r * 0.84, r * 0.84);
    // The arrow runs from the upper right down to the lower left: pass on the left.
    p.save();
    p.rotate(45);
    QPainterPath arrow;
    arrow.moveTo(0, 0.27);
    arrow.lineTo(0.15, 0.1);
    arrow.lineTo(0.05, 0.1);
    arrow.lineTo(0.05, -0.22);
    arrow.lineTo(-0.05, -0.22);
    arrow.lineTo(-0.05, 0.1);
    arrow.lineTo(-0.15, 0.1);
    arrow.closeSubpath();
    p.setBrush(Qt::white);
    p.drawPath(arrow);
    p.restore();
    return c.finish();
}

// ---------------------------------------------------------------- ramp

QImage drawRamp()
{
    const double w = 4.0, h = 2.5;
    MetreCanvas c(w, h);
    QPainter &p = c.p();
    const QRectF r(-w / 2, -h / 2, w, h);
    // The far (upper) end is the high end, so it catches more light.
    QLinearGradient deck(QPointF(0, h / 2), QPointF(0, -h / 2));
    deck.setColorAt(0.0, QColor(92, 94, 100));
    deck.setColorAt(1.0, QColor(150, 152, 158));
    p.setPen(Qt::NoPen);
    p.setBrush(deck);
    p.drawRect(r);
    // Hazard stripes along both sides.
    for (double x : {-w / 2, w / 2 - 0.3}) {
        const QRectF side(x, -h / 2, 0.3, h);
        p.save();
        p.setClipRect(side);
        p.setBrush(QColor(250, 200, 20));
        p.drawRect(side);
        p.setBrush(QColor(24, 24, 24));
        for (int i = -2; i < 12; ++i) {
            const double y = -h / 2 + i * 0.3;
            QPolygonF band{{x, y}, {x + 0.3, y - 0.3}, {x + 0.3, y - 0.15}, {x, y + 0.15}};
            p.drawPolygon(band);
        }
        p.restore();
    }
    // Chevrons pointing the way up.
    QPen chevron(QColor(246, 246, 240), 0.2);
    chevron.setJoinStyle(Qt::MiterJoin);
    chevron.setCapStyle(Qt::FlatCap);
    p.setPen(chevron);
    p.setBrush(Qt::NoBrush);
    for (int i = 0; i < 3; ++i) {
        const double y = -0.75 + i * 0.65;
        QPolygonF v{{-1.1, y + 0.45}, {0, y - 0.2}, {1.1, y + 0.45}};
        p.drawPolyline(v);
    }
    // The top edge is a drop: a heavier line.
    p.setPen(QPen(QColor(20, 20, 22), MetreCanvas::px(2.0)));
    p.drawLine(QPointF(-w / 2, -h / 2 + MetreCanvas::px(1)), QPointF(w / 2, -h / 2 + MetreCanvas::px(1)));
    p.setPen(outlinePen(1.0));
    p.drawRect(r);
    return c.finish();
}

// ---------------------------------------------------------------- marshalls

QImage drawMarshall()
{
    MetreCanvas c(0.72, 0.46);
    paintMarshall(c.p(), false);
    return c.finish();
}

// Centred on the marshall, not on the outstretched arm, so it turns about the body.
QImage drawMarshallPoint()
{
    MetreCanvas c(1.5, 0.46);
    paintMarshall(c.p(), true);
    return c.finish();
}

} // namespace art
