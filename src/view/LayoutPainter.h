#pragma once
// Paints a layout as the document window shows it: the visible part of the background
// stretched over the client area, the objects near the visible part in collection
// order, and the type's start marker when the layout has no start of its own. It needs
// no window, so the benchmarks and tests paint into pictures with the same code.

#include <QImage>
#include <cstdint>

class cBitmap;
class cGraphics;
class LayoutDocument;
class ViewGeometry;

// Layout units around the visible area in which objects are still asked to draw.
constexpr int32_t CullMargin = 128;

struct CullRect {
    int32_t left = 0, top = 0, right = 0, bottom = 0; // left/top inclusive, right/bottom exclusive
    bool contains(int32_t x, int32_t y) const { return x >= left && y >= top && x < right && y < bottom; }
};
// The area, in layout units, whose objects are drawn (overflow-checked).
CullRect CullingRect(const ViewGeometry &view);

// The selection as the view marks it: an outline around everything selected, and a
// marker on each selected object too small to see it is lit. Only the window draws
// these; exported pictures never show a selection.
constexpr QRgb SelectionColour = qRgb(40, 200, 255);
// A selected object whose drawn picture is smaller than this each way gets a marker.
constexpr int SelectionMarkerBelow = 6;

class LayoutPainter {
public:
    // Paints everything, the selection marks last; returns how many objects (the start
    // marker included) were drawn.
    // Run-time errors reach the caller.
    int Draw(cGraphics &graphics, const LayoutDocument &doc, const cBitmap &background, const ViewGeometry &view);
    // Paints the background only (what Draw starts with).
    void DrawBackground(cGraphics &graphics, const cBitmap &background, const ViewGeometry &view);
    // Forgets the stretched background, for example after the picture changed.
    void invalidate() { m_cache = QImage(); }

private:
    struct CacheKey {
        qint64 image = 0;
        int32_t scrollX = 0, scrollY = 0, visibleWidth = 0, visibleHeight = 0;
        int32_t offsetX = 0, offsetY = 0, clientWidth = 0, clientHeight = 0;
        bool operator==(const CacheKey &) const = default;
    };
    const QImage &stretchedBackground(const QImage &background, const ViewGeometry &view);

    QImage m_cache;
    CacheKey m_key;
};
