#pragma once
// Shared furniture for the background maps: the ground colours, grass, trees, kerbs,
// the 10 m grid and the scale bar. Maps are drawn in pixels at kMapScale per metre.

#include "Artwork.h"

namespace art::map {

inline double m(double metres)
{
    return metres * kMapScale;
}

const QColor kGrass(92, 136, 60);
const QColor kGrassStripe(100, 144, 66);
const QColor kAsphalt(78, 80, 85);
const QColor kAsphaltPatch(84, 86, 90);
const QColor kConcrete(148, 148, 144);
const QColor kGravel(196, 178, 138);
const QColor kPaint(236, 236, 230);
const QColor kYellowPaint(232, 196, 40);
const QColor kKerbGrey(182, 182, 176);

// A map-sized RGB canvas with an antialiased painter; grass with mowing stripes.
QImage grassCanvas(int width, int height, bool stripesAcross = true);
QPainter &begin(QPainter &p, QImage &image);

// A tree crown seen from above.
void drawTree(QPainter &p, const QPointF &at, double radius);
// Trees scattered over an area, avoiding `keepOut` (plus a margin of the crown).
void scatterTrees(QPainter &p, const QRectF &area, const QPainterPath &keepOut, int count, uint32_t seed);
// A red and white kerb along a path, `width` pixels wide, stripes `stripe` pixels long.
void drawKerb(QPainter &p, const QPainterPath &path, double width, double stripe);
// A building's flat roof with a parapet and a few plant units.
void drawRoof(QPainter &p, const QRectF &r, uint32_t seed);

// Faint lines every 10 m, a little stronger every 50 m.
void drawMapGrid(QPainter &p, const QSize &size);
// A 50 m scale bar with 10 m ticks and a "50 m" label; bottom-left corner at `at`.
void drawScaleBar(QPainter &p, const QPointF &at);
// Sparse light speckle over pixels of exactly the `base` colour: a little texture that
// still compresses well.
void speckle(QImage &image, const QColor &base, int amplitude, double density, uint32_t seed);
// A short white arrow painted on the road, pointing along `angleDegrees` (0 = up).
void drawRoadArrow(QPainter &p, const QPointF &at, double angleDegrees, double length);

} // namespace art::map
