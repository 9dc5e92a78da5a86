// A selection saved as a pack, and a pack placed in a layout.

#include "core/LayoutDocument.h"

#include "base/Runtime.h"


QByteArray LayoutDocument::SelectionPackBytes() const
{
    QList<PackRecord> records;
    records.reserve(m_selection.size());
    for (const selObject &s : m_selection) {
        const varnoObject &o = m_objects.Item(s.strKey);
        records.append({o.ID(), s.X, s.Y, o.Angle(), o.Width()});
    }
    const int16_t width = rt::sub16(m_bounds.right, m_bounds.left);
    const int16_t height = rt::sub16(m_bounds.bottom, m_bounds.top);
    return PackBytes(width, height, records);
}

void LayoutDocument::PlacePack(const PackData &pack, int16_t x, int16_t y)
{
    for (varnoObject &o : m_objects)
        o.setSelected(false);
    // The drop point is the pack's centre.
    const int16_t left = rt::sub16(x, pack.width / 2);
    const int16_t top = rt::sub16(y, pack.height / 2);
    for (const PackRecord &r : pack.records) {
        int16_t angle = r.Angle;
        uint8_t width = r.Width;
        bool fromView = false;
        bool selected = true;
        ObjectAdd(r.ID, rt::add16(left, r.X), rt::add16(top, r.Y), angle, width, fromView, selected);
    }
    if (!pack.complete())
        rt::raise(rt::InputPastEndOfFile);
}
