#include "catalogue/PackFormat.h"

#include "base/Runtime.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

namespace {
constexpr int PackHeaderSize = 6;
constexpr int PackRecordSize = 8;

void put16(QByteArray &out, int16_t v)
{
    uchar b[2];
    qToLittleEndian<qint16>(v, b);
    out.append(reinterpret_cast<const char *>(b), 2);
}

int16_t get16(const char *p)
{
    return qFromLittleEndian<qint16>(p);
}
} // namespace

PackData ReadPackFile(const QString &path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile())
        rt::raise(rt::FileNotFound);
    if (!file.open(QIODevice::ReadOnly))
        rt::raise(rt::PermissionDenied);
    const QByteArray head = file.read(PackHeaderSize);
    if (head.size() < PackHeaderSize)
        rt::raise(rt::InputPastEndOfFile);
    PackData pack;
    pack.width = get16(head.constData());
    pack.height = get16(head.constData() + 2);
    pack.count = get16(head.constData() + 4);
    if (pack.count <= 0)
        return pack;
    // Only what the count asks for: a longer file holds an older pack's tail.
    const QByteArray body = file.read(qint64(pack.count) * PackRecordSize);
    const int present = int(body.size() / PackRecordSize);
    pack.records.reserve(present);
    for (int i = 0; i < present; ++i) {
        const char *p = body.constData() + qsizetype(i) * PackRecordSize;
        PackRecord r;
        r.ID = uint8_t(p[0]);
        r.X = get16(p + 1);
        r.Y = get16(p + 3);
        r.Angle = get16(p + 5);
        r.Width = uint8_t(p[7]);
        pack.records.append(r);
    }
    return pack;
}

QByteArray PackBytes(int16_t width, int16_t height, const QList<PackRecord> &records)
{
    QByteArray out;
    out.reserve(PackHeaderSize + records.size() * PackRecordSize);
    put16(out, width);
    put16(out, height);
    put16(out, rt::toInt16(static_cast<long long>(records.size())));
    for (const PackRecord &r : records) {
        out.append(char(r.ID));
        put16(out, r.X);
        put16(out, r.Y);
        put16(out, r.Angle);
        out.append(char(r.Width));
    }
    return out;
}

