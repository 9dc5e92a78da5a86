// The .lyt bytes of a LayoutDocument.

#include "core/LayoutDocument.h"

#include "base/Language.h"
#include "base/Runtime.h"
#include "catalogue/ObjectKinds.h"
#include "core/LayoutFormat.h"

#include <QIODevice>
#include <QtEndian>

void LayoutDocument::ReadLayout(QIODevice &file, const QString &name)
{
    const QByteArray head = file.read(lyt::HeaderSize);
    if (head.size() < lyt::HeaderSize)
        rt::raise(rt::InputPastEndOfFile);
    m_revision = uint8_t(head[7]);
    m_laps = uint8_t(head[10]);
    resetContent();

    const int16_t count = qFromLittleEndian<qint16>(head.constData() + 8);
    if (count < 0)
        rt::raise(rt::Overflow); // the count does not fit the signed 16 bits it is read into
    // Only what the count needs; anything after it is an old tail and is ignored.
    const QByteArray body = file.read(qint64(count) * lyt::RecordSize);

    const lyt::TypeInfo *type = lyt::typeInfo(m_layoutType);
    const lyt::PositionMap *map = lyt::positionMap(m_layoutType, m_revision);
    const bool au = IsAuSite();
    int16_t x = 0;
    int16_t y = 0;
    for (int i = 0; i < count; ++i) {
        if (!type)
            rt::raise(rt::InvalidCall, name + QStringLiteral("\r\n\r\n") + Lang(164));
        if (body.size() < qsizetype(i + 1) * lyt::RecordSize)
            rt::raise(rt::InputPastEndOfFile);
        const lyt::FileRecord record = lyt::parseRecord(body.constData() + qsizetype(i) * lyt::RecordSize);
        // Without a map (BL3 revisions above 251) the position is left as it was.
        if (map)
            lyt::fromFile(*map, BoundsWidth(), BoundsHeight(), record.x, record.y, x, y);
        const lyt::DecodedObject d = lyt::decodeKind(record, au);
        int16_t angle = d.angle;
        uint8_t width = d.width;
        bool fromView = false;
        bool selected = false;
        ObjectAdd(uint8_t(d.id), x, y, angle, width, fromView, selected);
    }
}

QByteArray LayoutDocument::LayoutBytes(bool *unsupported) const
{
    *unsupported = false;
    QByteArray out = lyt::header(m_revision, m_objects.Count(), m_laps);
    const lyt::TypeInfo *type = lyt::typeInfo(m_layoutType);
    const lyt::PositionMap *map = lyt::positionMap(m_layoutType, m_revision);
    const bool au = IsAuSite();
    uint8_t previousFlags = 0;
    out.reserve(out.size() + m_objects.Count() * lyt::RecordSize);
    for (const varnoObject &o : m_objects) {
        if (!type || !map) {
            *unsupported = true;
            return out;
        }
        lyt::FileRecord r;
        lyt::toFile(*map, BoundsWidth(), BoundsHeight(), o.X(), o.Y(), r.x, r.y);
        r.z = au ? 255 : 35;
        r.flags = lyt::flagsFor(o.ID(), o.Width(), previousFlags);
        previousFlags = r.flags;
        r.index = FileIndexForKind(o.ID(), au);
        r.heading = o.ID() == Kind::RouteChecker ? o.RouteIndex() : lyt::headingFor(o.Angle());
        lyt::appendRecord(out, r);
    }
    return out;
}
