// Cones and tyre stacks, seen from above. Sizes are those of the real objects at
// kObjectScale pixels per metre; every picture is centred on the object's middle.

#include "Artwork.h"

#include <QRadialGradient>
#include <cmath>

namespace art {

namespace {

const QColor kOutline(28, 28, 30);

struct ConeStyle {
    QColor body;
    QColor base;
    QColor band;
    int bands = 1; // reflective rings on the body
    bool squareBase = true;
    double baseSize = 0.46; // metres across the base
    double bodyRadius = 0.17;
    QColor outline = kOutline;
};

// A light from the upper left: the body's highlight sits off-centre toward it.
QRadialGradient bodyGradient(double radius, const QColor &color)
{
    QRadialGradient g(QPointF(0, 0), radius, QPointF(-radius * 0.35, -radius * 0.35));
    g.setColorAt(0.0, color.lighter(125));
    g.setColorAt(0.7, color);
    g.setColorAt(1.0, color.darker(118));
    return g;
}

void paintCone(QPainter &p, const ConeStyle &s)
{
    // Base plate, with a thin outline so the cone stands out on any ground.
    p.setPen(outlinePen(1.0, s.outline));
    p.setBrush(s.base);
    const double b = s.baseSize / 2;
    if (s.squareBase)
        p.drawRoundedRect(QRectF(-b, -b, 2 * b, 2 * b), 0.08, 0.08);
    else
        p.drawEllipse(QPointF(0, 0), b, b);

    // Body: a shaded disc seen from straight above.
    p.setBrush(bodyGradient(s.bodyRadius, s.body));
    p.setPen(outlinePen(0.8, s.outline));
    p.drawEllipse(QPointF(0, 0), s.bodyRadius, s.bodyRadius);

    // Reflective bands show as rings part way up the cone.
    p.setBrush(Qt::NoBrush);
    const double step = s.bodyRadius * 0.55 / (s.bands + 1);
    for (int i = 1; i <= s.bands; ++i) {
        const double r = s.bodyRadius * 0.25 + step * i + (s.bands == 1 ? 0.01 : 0.0);
        p.setPen(QPen(s.band, s.bands == 1 ? 0.05 : 0.03));
        p.drawEllipse(QPointF(0, 0), r, r);
    }

    // The tip, with its small opening.
    p.setPen(outlinePen(0.6, s.outline));
    p.setBrush(s.body.lighter(115));
    p.drawEllipse(QPointF(0, 0), 0.045, 0.045);
}

QImage coneImage(const ConeStyle &s)
{
    MetreCanvas c(s.baseSize, s.baseSize);
    paintCone(c.p(), s);
    return c.finish();
}

ConeStyle colouredCone(const QColor &body, const QColor &band = Qt::white)
{
    ConeStyle s;
    s.body = body;
    s.base = body.darker(135);
    s.band = band;
    return s;
}

struct TyreStyle {
    QColor paint;         // sidewall colour
    double radius = 0.32; // outer radius in metres
};

void paintTyreStack(QPainter &p, const QPointF &at, const TyreStyle &s)
{
    const double r = s.radius;
    // Tread.
    p.setPen(outlinePen(1.0, QColor(12, 12, 14)));
    p.setBrush(QColor(40, 40, 44));
    p.drawEllipse(at, r, r);
    // Painted sidewall of the top tyre.
    QRadialGradient side(at, r * 0.92, at + QPointF(-r * 0.3, -r * 0.3));
    side.setColorAt(0.0, s.paint.lighter(115));
    side.setColorAt(1.0, s.paint.darker(112));
    p.setPen(Qt::NoPen);
    p.setBrush(side);
    p.drawEllipse(at, r * 0.88, r * 0.88);
    // The hole down the middle of the stack, darkest at the bottom.
    QRadialGradient hole(at, r * 0.55);
    hole.setColorAt(0.0, QColor(8, 8, 10));
    hole.setColorAt(0.8, QColor(30, 30, 34));
    hole.setColorAt(1.0, QColor(55, 55, 60));
    p.setPen(outlinePen(0.7, QColor(18, 18, 20)));
    p.setBrush(hole);
    p.drawEllipse(at, r * 0.52, r * 0.52);
}

QImage tyreStacks(const QColor &paint, int stacks)
{
    TyreStyle s{paint};
    const double d = 2 * s.radius;
    MetreCanvas c(d * stacks, d);
    for (int i = 0; i < stacks; ++i)
        paintTyreStack(c.p(), QPointF((i - (stacks - 1) / 2.0) * d, 0), s);
    return c.finish();
}

const QColor kTyreWhite(236, 236, 232);
const QColor kTyreRed(206, 38, 34);
const QColor kTyreBlue(32, 84, 204);

} // namespace

// ---------------------------------------------------------------- cones

QImage drawConeRed()
{
    return coneImage(colouredCone(QColor(232, 62, 28)));
}
QImage drawConeBlue()
{
    return coneImage(colouredCone(QColor(30, 112, 222)));
}
QImage drawConeYellow()
{
    return coneImage(colouredCone(QColor(250, 206, 28)));
}
QImage drawConeGreen()
{
    return coneImage(colouredCone(QColor(42, 172, 72)));
}

QImage drawConeWhite()
{
    ConeStyle s = colouredCone(QColor(246, 246, 244), QColor(40, 40, 44));
    s.base = QColor(196, 196, 196);
    return coneImage(s);
}

// The editor colours this one by multiplying, so it is drawn in greys only.
QImage drawCone()
{
    ConeStyle s;
    s.body = QColor(236, 236, 236);
    s.base = QColor(196, 196, 196);
    s.band = QColor(255, 255, 255);
    s.outline = QColor(48, 48, 48);
    MetreCanvas c(s.baseSize, s.baseSize);
    paintCone(c.p(), s);
    // Thin grey edges keep the band visible after tinting.
    QPainter &p = c.p();
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(QColor(150, 150, 150), MetreCanvas::px(0.6)));
    p.drawEllipse(QPointF(0, 0), 0.072, 0.072);
    p.drawEllipse(QPointF(0, 0), 0.124, 0.124);
    return c.finish();
}

// A taller red cone on a round black rubber base.
QImage drawConeRed3()
{
    ConeStyle s;
    s.body = QColor(214, 28, 36);
    s.base = QColor(46, 46, 50);
    s.band = Qt::white;
    s.bands = 2;
    s.squareBase = false;
    s.baseSize = 0.5;
    s.bodyRadius = 0.19;
    return coneImage(s);
}

// A large orange highway cone on a square black base, two bands.
QImage drawCone1()
{
    ConeStyle s;
    s.body = QColor(255, 128, 0);
    s.base = QColor(40, 40, 44);
    s.band = QColor(250, 250, 250);
    s.bands = 2;
    s.baseSize = 0.56;
    s.bodyRadius = 0.2;
    return coneImage(s);
}

// A low marker dome: no base plate, a wide skirt and a hole at the top.
QImage drawCone2()
{
    const double r = 0.17;
    MetreCanvas c(2 * r, 2 * r);
    QPainter &p = c.p();
    const QColor body(255, 222, 0);
    p.setPen(outlinePen(1.0));
    p.setBrush(bodyGradient(r, body));
    p.drawEllipse(QPointF(0, 0), r, r);
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(body.darker(135), MetreCanvas::px(1.0)));
    p.drawEllipse(QPointF(0, 0), r * 0.62, r * 0.62);
    p.setPen(outlinePen(0.7));
    p.setBrush(QColor(30, 30, 30));
    p.drawEllipse(QPointF(0, 0), r * 0.28, r * 0.28);
    return c.finish();
}

// A cone carrying a flat arrow board that points the way (up). Greys only: tinted.
QImage drawConePointer()
{
    MetreCanvas c(0.62, 0.74);
    QPainter &p = c.p();
    QPainterPath arrow;
    arrow.moveTo(0, -0.37);
    arrow.lineTo(0.31, -0.08);
    arrow.lineTo(0.13, -0.08);
    arrow.lineTo(0.13, 0.37);
    arrow.lineTo(-0.13, 0.37);
    arrow.lineTo(-0.13, -0.08);
    arrow.lineTo(-0.31, -0.08);
    arrow.closeSubpath();
    QLinearGradient g(QPointF(-0.3, -0.37), QPointF(0.3, 0.37));
    g.setColorAt(0.0, QColor(255, 255, 255));
    g.setColorAt(1.0, QColor(214, 214, 214));
    p.setPen(outlinePen(1.0, QColor(44, 44, 44)));
    p.setBrush(g);
    p.drawPath(arrow);
    // The cone the board sits on.
    p.setBrush(bodyGradient(0.1, QColor(228, 228, 228)));
    p.setPen(outlinePen(0.7, QColor(90, 90, 90)));
    p.drawEllipse(QPointF(0, 0.1), 0.1, 0.1);
    p.setBrush(QColor(255, 255, 255));
    p.drawEllipse(QPointF(0, 0.1), 0.035, 0.035);
    return c.finish();
}

// ---------------------------------------------------------------- tyres

QImage drawTyresWhite()
{
    return tyreStacks(kTyreWhite, 1);
}
QImage drawTyres2White()
{
    return tyreStacks(kTyreWhite, 2);
}
QImage drawTyresRed()
{
    return tyreStacks(kTyreRed, 1);
}
QImage drawTyres2Red()
{
    return tyreStacks(kTyreRed, 2);
}
QImage drawTyresBlue()
{
    return tyreStacks(kTyreBlue, 1);
}
QImage drawTyres2Blue()
{
    return tyreStacks(kTyreBlue, 2);
}

// A small stack of plain black tyres.
QImage drawTyresSmall()
{
    TyreStyle s{QColor(70, 70, 76), 0.25};
    MetreCanvas c(0.5, 0.5);
    paintTyreStack(c.p(), QPointF(0, 0), s);
    // A lettering ring hints that the sidewall is rubber, not paint.
    c.p().setBrush(Qt::NoBrush);
    c.p().setPen(QPen(QColor(112, 112, 118), MetreCanvas::px(0.7)));
    c.p().drawEllipse(QPointF(0, 0), 0.18, 0.18);
    return c.finish();
}

} // namespace art
