#include "view/HitTest.h"

#include "catalogue/ObjectKinds.h"
#include "core/LayoutDocument.h"
#include "base/Runtime.h"
#include "view/ViewGeometry.h"

#include <cmath>

namespace {
// Thin lines (a finish line far out) would be nearly impossible to click exactly, so
// the pixels this close around the pointer count too.
constexpr int Tolerance = 2;

bool onPicture(const varnoObject &o, int cx, int cy, float scale, int x, int y)
{
    const int width = o.image().Width();
    if (width <= 0 || scale <= 0)
        return false;
    const int size = std::max(1, int(rt::toInt32(double(float(width) / scale))));
    const int left = cx - size / 2;
    const int top = cy - size / 2;
    // The pixels around the pointer cover a patch of the picture; when the picture is
    // drawn smaller than it is, that patch spans several of its pixels, and a thin line
    // must not slip between the samples.
    const auto toPicture = [&](int view) { return int(qint64(view) * width / size); };
    const int x0 = std::max(0, toPicture(x - Tolerance - left));
    const int x1 = std::min(width, toPicture(x + Tolerance + 1 - left));
    const int y0 = std::max(0, toPicture(y - Tolerance - top));
    const int y1 = std::min(o.image().Height(), toPicture(y + Tolerance + 1 - top));
    for (int py = y0; py < y1; ++py) {
        for (int px = x0; px < x1; ++px) {
            if (o.OnPixel(px, py))
                return true;
        }
    }
    return false;
}
} // namespace

bool ObjectHit(const varnoObject &o, const ViewGeometry &view, int x, int y)
{
    int32_t cx = o.X();
    int32_t cy = o.Y();
    view.layoutToView(cx, cy);
    const float scale = view.ObjectScale();
    if (o.ID() >= Kind::RestrictedInvisible && o.ID() <= Kind::RouteChecker) {
        const double radius = scale > 0 ? double(o.ImageSize()) / scale / 2.0 : 0.0;
        if (std::hypot(double(x - cx), double(y - cy)) <= std::max(radius, double(Tolerance)))
            return true;
    }
    return onPicture(o, cx, cy, scale, x, y);
}

QString ObjectAtPoint(const LayoutDocument &doc, const ViewGeometry &view, int x, int y)
{
    const ObjectCollection &objects = doc.Objects();
    // Later objects are painted over earlier ones, so the search runs backwards.
    for (int i = objects.Count() - 1; i >= 0; --i) {
        if (ObjectHit(objects.At(i), view, x, y))
            return objects.KeyAt(i);
    }
    return QString();
}

QStringList ObjectsInBox(const LayoutDocument &doc, const QRect &box)
{
    QStringList keys;
    const QRect r = box.normalized();
    const ObjectCollection &objects = doc.Objects();
    for (int i = 0; i < objects.Count(); ++i) {
        const varnoObject &o = objects.At(i);
        if (o.X() >= r.left() && o.X() <= r.right() && o.Y() >= r.top() && o.Y() <= r.bottom())
            keys.append(objects.KeyAt(i));
    }
    return keys;
}
