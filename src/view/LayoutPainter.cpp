#include "view/LayoutPainter.h"

#include "core/LayoutDocument.h"
#include "base/Runtime.h"
#include "imaging/cGraphics.h"
#include "view/ViewGeometry.h"

#include <QPainter>
#include <vector>

CullRect CullingRect(const ViewGeometry &view)
{
    CullRect r;
    r.left = rt::add32(view.ScrollX(), -CullMargin);
    r.top = rt::add32(view.ScrollY(), -CullMargin);
    r.right = rt::add32(rt::add32(view.ScrollX(), view.VisibleWidth()), CullMargin);
    r.bottom = rt::add32(rt::add32(view.ScrollY(), view.VisibleHeight()), CullMargin);
    return r;
}

// Stretching the background is by far the dearest part of a repaint, and it only
// changes with the zoom, the scroll position or the window size. Between those the
// stretched picture is kept and copied out, so moving objects, selecting and the tool
// previews repaint at the cost of a copy.
const QImage &LayoutPainter::stretchedBackground(const QImage &background, const ViewGeometry &view)
{
    const CacheKey key{background.cacheKey(), view.ScrollX(),     view.ScrollY(),       view.VisibleWidth(),
                       view.VisibleHeight(),  view.ViewOffsetX(), view.ViewOffsetY(),   view.clientWidth(),
                       view.clientHeight()};
    if (!m_cache.isNull() && key == m_key)
        return m_cache;
    m_key = key;
    const int w = std::max(1, view.clientWidth());
    const int h = std::max(1, view.clientHeight());
    m_cache = QImage(w, h, QImage::Format_ARGB32_Premultiplied);
    if (m_cache.isNull())
        return m_cache;
    m_cache.fill(Qt::transparent);

    // Source rectangle in picture pixels, destination the client area from the offset.
    // Only the part of the source that lies on the picture is drawn, mapped onto the
    // matching part of the destination, which is what stretching the whole rectangle
    // with transparent surroundings would give.
    const QRectF src(view.ScrollX(), view.ScrollY(), view.VisibleWidth(), view.VisibleHeight());
    const QRectF dst(view.ViewOffsetX(), view.ViewOffsetY(), view.clientWidth(), view.clientHeight());
    const QRectF onPicture = src.intersected(QRectF(0, 0, background.width(), background.height()));
    if (onPicture.isEmpty() || src.width() <= 0 || src.height() <= 0)
        return m_cache;
    const double sx = dst.width() / src.width();
    const double sy = dst.height() / src.height();
    const QRectF target(dst.left() + (onPicture.left() - src.left()) * sx, dst.top() + (onPicture.top() - src.top()) * sy,
                        onPicture.width() * sx, onPicture.height() * sy);
    QPainter p(&m_cache);
    p.setRenderHint(QPainter::SmoothPixmapTransform, true);
    p.drawImage(target, background, onPicture);
    return m_cache;
}

void LayoutPainter::DrawBackground(cGraphics &graphics, const cBitmap &picture, const ViewGeometry &view)
{
    QPainter *p = graphics.Handle();
    const QImage &background = picture.Handle();
    if (!p || background.isNull())
        return;
    const QImage &stretched = stretchedBackground(background, view);
    p->drawImage(0, 0, stretched);
}

namespace {

// A frame of the given thickness along the inside of r.
void fillFrame(QPainter &p, const QRect &r, int thickness, const QColor &colour)
{
    p.fillRect(QRect(r.left(), r.top(), r.width(), thickness), colour);
    p.fillRect(QRect(r.left(), r.bottom() - thickness + 1, r.width(), thickness), colour);
    p.fillRect(QRect(r.left(), r.top() + thickness, thickness, r.height() - 2 * thickness), colour);
    p.fillRect(QRect(r.right() - thickness + 1, r.top() + thickness, thickness, r.height() - 2 * thickness),
               colour);
}

// A one-pixel line in the selection colour on a darker three-pixel one, so the marks
// show on light and dark ground alike. The outline leaves a little room, so that it
// does not hide the edges of the outer pictures. Filled frames are the painter's
// fastest way to these lines; a wide pen costs more than all the objects together.
void drawSelectionMarks(QPainter &p, const QRect &box, std::vector<QRect> &marks)
{
    marks.push_back(box.adjusted(-3, -3, 3, 3));
    for (const QRect &r : marks)
        fillFrame(p, r.adjusted(-1, -1, 1, 1), 3, QColor(0, 0, 0, 150));
    for (const QRect &r : marks)
        fillFrame(p, r, 1, QColor::fromRgb(SelectionColour));
}

} // namespace

int LayoutPainter::Draw(cGraphics &graphics, const LayoutDocument &doc, const cBitmap &background,
                        const ViewGeometry &view)
{
    graphics.SetInterpolationMode(InterpolationModeBilinear);
    // Without a background there are no bounds, and nothing else is drawn either.
    if (background.isNull())
        return 0;
    DrawBackground(graphics, background, view);

    int drawn = 0;
    const float scale = view.ObjectScale();
    // Where the selected objects are drawn, in view pixels, off-screen ones included so
    // the outline keeps the selection's true extent.
    QRect selection;
    std::vector<QRect> marks; // one small square on each selected object too small to see
    if (!doc.Objects().isEmpty()) {
        const CullRect cull = CullingRect(view);
        for (const varnoObject &o : doc.Objects()) {
            const bool near = cull.contains(o.X(), o.Y());
            if (!near && !o.Selected())
                continue;
            int32_t x = o.X();
            int32_t y = o.Y();
            view.layoutToView(x, y);
            if (near) {
                o.Draw(x, y, graphics, scale, nullptr);
                ++drawn;
            }
            if (o.Selected()) {
                QRect r = o.DrawnRect(x, y, scale);
                if (near && r.width() < SelectionMarkerBelow && r.height() < SelectionMarkerBelow) {
                    marks.emplace_back(x - 3, y - 3, 7, 7);
                    r = marks.back();
                }
                selection |= r.isEmpty() ? QRect(x, y, 1, 1) : r;
            }
        }
    }
    if (!doc.HasStart() && doc.StartMarker()) {
        const varnoObject &marker = *doc.StartMarker();
        int32_t x = marker.X();
        int32_t y = marker.Y();
        view.layoutToView(x, y);
        marker.Draw(x, y, graphics, scale, nullptr);
        ++drawn;
    }
    if (!selection.isNull() && graphics.Handle())
        drawSelectionMarks(*graphics.Handle(), selection, marks);
    return drawn;
}
