#include "view/ViewGeometry.h"

#include "base/Runtime.h"

#include <algorithm>

void ViewGeometry::setClientSize(int32_t width, int32_t height)
{
    m_clientWidth = std::max(0, width);
    m_clientHeight = std::max(0, height);
    resize();
}

void ViewGeometry::setBackground(int32_t width, int32_t height, int32_t span)
{
    m_bgWidth = width;
    m_bgHeight = height;
    m_backgroundScale = span > 0 ? static_cast<float>(width) / static_cast<float>(span) : 0.0f;
    recomputeObjectScale();
    resize();
}

void ViewGeometry::setBackgroundSize(int32_t width, int32_t height)
{
    m_bgWidth = width;
    m_bgHeight = height;
    resize();
}

void ViewGeometry::recomputeObjectScale()
{
    m_objectScale = (4.0f / m_zoom) / (static_cast<float>(m_objectZoom) / 100.0f);
    if (m_backgroundScale > 0)
        m_objectScale /= m_backgroundScale;
}

void ViewGeometry::setZoom(float value)
{
    // The layout point in the middle of the window stays there.
    int32_t cx = m_clientWidth / 2;
    int32_t cy = m_clientHeight / 2;
    viewToLayout(cx, cy);

    if (m_bgWidth == 0)
        m_zoom = value;
    else if (value == FitWidth)
        m_zoom = static_cast<float>(m_clientWidth) / static_cast<float>(m_bgWidth);
    else if (value == FitHeight)
        m_zoom = static_cast<float>(m_clientHeight) / static_cast<float>(m_bgHeight);
    else
        m_zoom = value;
    m_zoom = std::clamp(m_zoom, MinZoom, MaxZoom);

    recomputeObjectScale();
    resize();
    centreOn(cx, cy);
    if (onUpdated)
        onUpdated();
}

void ViewGeometry::setObjectZoom(int16_t percent)
{
    m_objectZoom = std::clamp(percent, MinObjectZoom, MaxObjectZoom);
    recomputeObjectScale();
    if (onUpdated)
        onUpdated();
}

void ViewGeometry::resize()
{
    if (m_zoom <= 0)
        return;
    m_visibleWidth = rt::toInt32(static_cast<double>(m_clientWidth) / m_zoom);
    m_visibleHeight = rt::toInt32(static_cast<double>(m_clientHeight) / m_zoom);
    // When the whole picture fits it is centred.
    m_viewOffsetX = m_visibleWidth >= m_bgWidth
                        ? rt::toInt32(static_cast<double>(m_clientWidth) - double(m_zoom) * m_bgWidth) / 2
                        : 0;
    m_viewOffsetY = m_visibleHeight >= m_bgHeight
                        ? rt::toInt32(static_cast<double>(m_clientHeight) - double(m_zoom) * m_bgHeight) / 2
                        : 0;
    const int32_t visible[2] = {m_visibleWidth, m_visibleHeight};
    const int32_t extent[2] = {m_bgWidth, m_bgHeight};
    for (int i = 0; i < 2; ++i) {
        m_bars[i].maximum = extent[i] - visible[i];
        if (visible[i] < extent[i])
            m_bars[i].largeStep = visible[i];
        setScroll(i, m_bars[i].value);
    }
}

void ViewGeometry::setScroll(int index, int32_t value)
{
    ScrollBar &b = m_bars[index];
    b.value = std::clamp(value, 0, std::max(0, b.maximum));
}

void ViewGeometry::viewToLayout(int32_t &x, int32_t &y) const
{
    x = rt::toInt32((static_cast<double>(x) - m_viewOffsetX) / m_zoom + ScrollX() + 1);
    y = rt::toInt32((static_cast<double>(y) - m_viewOffsetY) / m_zoom + ScrollY() + 1);
}

void ViewGeometry::layoutToView(int32_t &x, int32_t &y) const
{
    x = rt::toInt32(double(m_zoom) * (static_cast<double>(x) - ScrollX() - 1) + m_viewOffsetX);
    y = rt::toInt32(double(m_zoom) * (static_cast<double>(y) - ScrollY() - 1) + m_viewOffsetY);
}

void ViewGeometry::centreOn(int32_t x, int32_t y)
{
    setScroll(0, rt::toInt32(static_cast<double>(x) - m_visibleWidth / 2.0));
    setScroll(1, rt::toInt32(static_cast<double>(y) - m_visibleHeight / 2.0));
}

void ViewGeometry::modMouseScroll(bool up, int keyCode)
{
    const int key = keyCode & 0xFFFF;
    if (key != 16 && key != 17)
        return;
    setZoom(up ? m_zoom * 2 : m_zoom / 2);
}
