// The operations on the selected objects of a document: select all, flip, rotate,
// re-type, width and moving. Positions stay 16-bit and every step rounds, so these
// reproduce the small drift of the original program exactly.

#include "core/LayoutDocument.h"

#include "catalogue/ObjectKinds.h"
#include "base/Runtime.h"

#include <QStringList>
#include <algorithm>
#include <cmath>

namespace {

// Direction from (x1, y1) to (x2, y2) in radians, with the short constants the
// program has always used (they decide where rotated objects land).
double Bearing(float x1, float y1, float x2, float y2)
{
    const float dx = x2 - x1;
    if (dx == 0.0f)
        return y2 > y1 ? 1.570796325 : -1.570796325;
    const float slope = (y2 - y1) / dx;
    double angle = std::atan(static_cast<double>(slope));
    if (x2 < x1)
        angle += 3.14159265;
    return angle;
}

QStringList selectedKeys(const QList<selObject> &selection)
{
    QStringList keys;
    keys.reserve(selection.size());
    for (const selObject &s : selection)
        keys.append(s.strKey);
    return keys;
}

} // namespace

void LayoutDocument::SelectAll(bool selected)
{
    for (varnoObject &o : m_objects)
        o.setSelected(selected);
    SelectionUpdate(true);
    RaiseUpdates();
}

void LayoutDocument::Select(const QStringList &keys, SelectMode mode)
{
    if (mode == SelectMode::Replace) {
        for (varnoObject &o : m_objects)
            o.setSelected(false);
    }
    for (const QString &key : keys) {
        if (varnoObject *o = m_objects.Find(key))
            o->setSelected(mode == SelectMode::Toggle ? !o->Selected() : true);
    }
    SelectionUpdate(true);
    RaiseUpdates();
}

void LayoutDocument::SelectionFlip(bool Vertical)
{
    const SelectionBox box = m_bounds;
    for (const selObject &s : m_selection) {
        varnoObject &o = m_objects.Item(s.strKey);
        int16_t angle;
        if (Vertical) {
            o.setY(rt::toInt16(static_cast<long long>(box.top) + box.bottom - o.Y()));
            angle = rt::sub16(0, o.Angle());
        } else {
            o.setX(rt::toInt16(static_cast<long long>(box.left) + box.right - o.X()));
            angle = rt::sub16(180, o.Angle());
        }
        o.Update(angle, o.Width());
    }
    SelectionUpdate(false);
    RaiseUpdates();
}

void LayoutDocument::ObjectRotate(int32_t angle)
{
    if (m_selection.size() < 2) {
        if (!m_selection.isEmpty()) {
            varnoObject &o = m_objects.Item(m_selection.first().strKey);
            o.Update(rt::toInt16(static_cast<long long>(angle)), o.Width());
        }
    } else {
        const SelectionBox box = m_bounds;
        const int16_t cx = rt::toInt16(static_cast<long long>(box.left) + (box.right - box.left) / 2);
        const int16_t cy = rt::toInt16(static_cast<long long>(box.top) + (box.bottom - box.top) / 2);
        const int16_t step = rt::toInt16(static_cast<long long>(angle) - m_groupAngle);
        for (const selObject &s : m_selection) {
            varnoObject &o = m_objects.Item(s.strKey);
            const int16_t dx = rt::sub16(o.X(), cx);
            const int16_t dy = rt::sub16(o.Y(), cy);
            const double r = std::sqrt(double(dx) * dx + double(dy) * dy);
            const double theta = Bearing(cx, cy, o.X(), o.Y()) - step * 0.0174532925;
            o.setX(rt::add16(rt::toInt16(r * std::cos(theta)), cx));
            o.setY(rt::add16(rt::toInt16(r * std::sin(theta)), cy));
            o.Update(rt::add16(o.Angle(), step), o.Width());
        }
    }
    m_groupAngle = rt::toInt16(static_cast<long long>(angle));
    SelectionUpdate(false);
    // The group angle belongs to this selection; the rebuild above keeps the same keys.
    RaiseUpdates();
}

void LayoutDocument::ObjectChange(uint8_t kind)
{
    const QStringList keys = selectedKeys(m_selection);
    for (const QString &key : keys) {
        varnoObject *old = m_objects.Find(key);
        if (!old || old->ID() == kind)
            continue;
        const int before = m_objects.Count();
        int16_t angle = old->Angle();
        // A line keeps its width; a kind without one ignores it.
        uint8_t width = old->Width();
        bool fromView = false;
        bool selected = true;
        ObjectAdd(kind, old->X(), old->Y(), angle, width, fromView, selected);
        if (m_objects.Count() == before)
            continue; // refused and reported; the old object stays
        // Like every new object it goes to the end of the collection, and of the file.
        ObjectRemove(key);
    }
    SelectionUpdate(true);
    RaiseUpdates();
}

void LayoutDocument::ObjectWidth(uint8_t width)
{
    // A width of 0 would turn a line into an object without one for good.
    if (width == 0)
        return;
    for (const selObject &s : m_selection) {
        varnoObject &o = m_objects.Item(s.strKey);
        if (o.Width() == 0 || o.Width() == width)
            continue;
        o.Update(o.Angle(), width);
    }
    SelectionUpdate(false);
    RaiseUpdates();
}

QPoint LayoutDocument::MoveSelection(int32_t dx, int32_t dy)
{
    if (m_selection.isEmpty() || (dx == 0 && dy == 0))
        return {};
    // Every object must stay on the layout, so the whole group stops where the first
    // one meets an edge.
    const SelectionBox box = m_bounds;
    dx = std::clamp<int32_t>(dx, 1 - box.left, std::max(0, BoundsWidth() - box.right));
    dy = std::clamp<int32_t>(dy, 1 - box.top, std::max(0, BoundsHeight() - box.bottom));
    if (box.left < 1 || box.right > BoundsWidth())
        dx = 0;
    if (box.top < 1 || box.bottom > BoundsHeight())
        dy = 0;
    if (dx == 0 && dy == 0)
        return {};
    for (const selObject &s : m_selection) {
        varnoObject &o = m_objects.Item(s.strKey);
        o.setX(rt::toInt16(static_cast<long long>(o.X()) + dx));
        o.setY(rt::toInt16(static_cast<long long>(o.Y()) + dy));
    }
    SelectionUpdate(false);
    return QPoint(dx, dy);
}
