#pragma once
// The mapping between layout coordinates (background pixels, from 1) and a window's
// client pixels: zoom, object zoom, centring offsets and scroll positions. It knows
// nothing about widgets; the document window feeds it sizes and events.

#include <cstdint>
#include <functional>

class ViewGeometry {
public:
    // Zoom values that are commands rather than factors: fit the width, fit the height.
    static constexpr float FitWidth = 87.0f;
    static constexpr float FitHeight = 72.0f;
    static constexpr float MinZoom = 0.03125f;
    static constexpr float MaxZoom = 8.0f;
    // Object zoom stays where halving and doubling from 100% can always come back: two
    // halvings down, four doublings up.
    static constexpr int16_t MinObjectZoom = 25;
    static constexpr int16_t MaxObjectZoom = 1600;

    struct ScrollBar {
        int32_t value = 0;
        int32_t maximum = 0;   // may be zero or negative when everything fits
        int32_t largeStep = 1;
    };

    // Client area size in pixels.
    void setClientSize(int32_t width, int32_t height);
    int32_t clientWidth() const { return m_clientWidth; }
    int32_t clientHeight() const { return m_clientHeight; }
    // Background size (0 x 0 when none is loaded) and the type's span constant.
    void setBackground(int32_t width, int32_t height, int32_t span);
    // A new picture of another size; the background scale stays as it was.
    void setBackgroundSize(int32_t width, int32_t height);
    int32_t backgroundWidth() const { return m_bgWidth; }
    int32_t backgroundHeight() const { return m_bgHeight; }

    float Zoom() const { return m_zoom; }
    // Sets the zoom (87 and 72 fit the width or height), clamps it, keeps the point at
    // the middle of the window in the middle, and reports the change.
    void setZoom(float value);
    int16_t ObjectZoom() const { return m_objectZoom; }
    // Sets the object zoom in percent, clamped to MinObjectZoom .. MaxObjectZoom.
    void setObjectZoom(int16_t percent);
    float ObjectScale() const { return m_objectScale; }
    float BackgroundScale() const { return m_backgroundScale; }

    int32_t ViewOffsetX() const { return m_viewOffsetX; }
    int32_t ViewOffsetY() const { return m_viewOffsetY; }
    int32_t ScrollX() const { return m_bars[0].value; }
    int32_t ScrollY() const { return m_bars[1].value; }
    int32_t VisibleWidth() const { return m_visibleWidth; }
    int32_t VisibleHeight() const { return m_visibleHeight; }
    const ScrollBar &bar(int index) const { return m_bars[index]; }
    // Moves a scroll bar (0 horizontal, 1 vertical), clamped to its range.
    void setScroll(int index, int32_t value);

    // Client pixels to layout coordinates and back, rounding half to even (16/32-bit checked).
    void viewToLayout(int32_t &x, int32_t &y) const;
    void layoutToView(int32_t &x, int32_t &y) const;
    // Scrolls so that a layout point is at the middle of the window.
    void centreOn(int32_t x, int32_t y);
    // Re-derives visible sizes, offsets and scroll ranges after a resize or zoom.
    void resize();
    // A wheel turn with Shift (16) or Ctrl (17) held doubles or halves the zoom.
    void modMouseScroll(bool up, int keyCode);

    // Called after every zoom or object-zoom change.
    std::function<void()> onUpdated;

private:
    void recomputeObjectScale();

    int32_t m_clientWidth = 0;
    int32_t m_clientHeight = 0;
    int32_t m_bgWidth = 0;
    int32_t m_bgHeight = 0;
    float m_zoom = 1.0f;
    int16_t m_objectZoom = 100;
    float m_objectScale = 4.0f;
    float m_backgroundScale = 0.0f;
    int32_t m_viewOffsetX = 0;
    int32_t m_viewOffsetY = 0;
    int32_t m_visibleWidth = 0;
    int32_t m_visibleHeight = 0;
    ScrollBar m_bars[2];
};
