#include "core/LayoutFormat.h"

#include "catalogue/ObjectKinds.h"
#include "base/Runtime.h"

#include <QtEndian>
#include <array>

namespace lyt {

namespace {
const std::array<TypeInfo, 5> kTypes = {{
    {"AU1", "AU1.png", 1630, 1507, 1267, -180},
    {"AU2", "AU2.png", 1050, 831, 549, 69},
    {"AU3", "AU34.png", 580, 108, 5442, 0},
    {"AU4", "AU34.png", 580, 184, 5442, 0},
    {"BL3", "BL3.png", 1220, 176, 1417, 0},
}};

// The AU3/AU4 reader subtracts 11387 where the writer subtracted it too, so those
// layouts come back displaced. Old layouts and their users depend on the program
// behaving the same way, so the offset stays as it always was.
const PositionMap kAU1 = {4577, 3312, -8255, -9096, 3312, 9096};
const PositionMap kAU2 = {3012, 3599, -3012, -9611, 3599, 9611};
const PositionMap kAU34 = {1650, 1678, -17807, -11387, 1678, -11387};
const PositionMap kBL250 = {3602, 5705, -5790, 4375, 5705, -4375};
const PositionMap kBL251 = {3320, 5282, -5360, 4050, 5282, -4050};
} // namespace

const TypeInfo *typeInfo(const QString &layoutType)
{
    const QString code = layoutType.left(3).toUpper();
    for (const TypeInfo &t : kTypes) {
        if (code == QLatin1String(t.code))
            return &t;
    }
    return nullptr;
}

const PositionMap *positionMap(const QString &layoutType, uint8_t revision)
{
    const TypeInfo *t = typeInfo(layoutType);
    if (!t)
        return nullptr;
    const QLatin1String code(t->code);
    if (code == QLatin1String("AU1"))
        return &kAU1;
    if (code == QLatin1String("AU2"))
        return &kAU2;
    if (code == QLatin1String("AU3") || code == QLatin1String("AU4"))
        return &kAU34;
    if (revision <= 250)
        return &kBL250;
    if (revision == 251)
        return &kBL251;
    return nullptr;
}

void toFile(const PositionMap &m, int width, int height, int16_t x, int16_t y, int16_t &fx, int16_t &fy)
{
    if (width <= 0 || height <= 0)
        rt::raise(rt::DivisionByZero);
    fx = rt::toInt16(double(x) / width * m.a - m.b);
    fy = rt::toInt16(double(y) / height * m.c + m.e);
}

void fromFile(const PositionMap &m, int width, int height, int16_t fx, int16_t fy, int16_t &x, int16_t &y)
{
    x = rt::toInt16(double(rt::add16(fx, m.readDX)) / m.a * width);
    y = rt::toInt16(double(rt::add16(fy, m.readDY)) / m.c * height);
}

FileRecord parseRecord(const char *p)
{
    const auto *u = reinterpret_cast<const uchar *>(p);
    FileRecord r;
    r.x = qFromLittleEndian<qint16>(u);
    r.y = qFromLittleEndian<qint16>(u + 2);
    r.z = u[4];
    r.flags = u[5];
    r.index = u[6];
    r.heading = u[7];
    return r;
}

void appendRecord(QByteArray &out, const FileRecord &r)
{
    uchar b[RecordSize];
    qToLittleEndian<qint16>(r.x, b);
    qToLittleEndian<qint16>(r.y, b + 2);
    b[4] = r.z;
    b[5] = r.flags;
    b[6] = r.index;
    b[7] = r.heading;
    out.append(reinterpret_cast<const char *>(b), RecordSize);
}

DecodedObject decodeKind(const FileRecord &r, bool auSite)
{
    DecodedObject d;
    if (r.index < FlagStoredIndex) {
        if (r.flags != 0) {
            d.width = rt::toByte(((r.flags / 4) - 32) * 2LL);
            d.id = d.width != 0 ? (r.flags & 3) + 1 : Kind::Start;
        } else {
            d.id = KindForFileIndex(r.index, auSite);
            d.width = 0;
        }
    } else if ((r.flags & 0x80) == 0) {
        d.id = Kind::RouteChecker;
        d.width = r.flags / 2;
    } else {
        d.id = (r.flags & 3) + Kind::RestrictedInvisible;
        d.width = rt::toByte(((r.flags / 4) - 32) * 2LL);
    }
    d.angle = angleFromHeading(r.heading);
    return d;
}

uint8_t flagsFor(int id, uint8_t width, uint8_t previousFlags)
{
    if (id == Kind::Start)
        return 128;
    if (id >= Kind::Finish && id <= Kind::Checkpoint3)
        return rt::toByte(128LL + 4 * (width / 2) + (id - 1));
    if (id >= Kind::FirstOrdinary && id <= Kind::LastOrdinary)
        return 0;
    if (id >= Kind::RestrictedInvisible && id <= Kind::RestrictedPointRight)
        return rt::toByte(128LL + 4 * (width / 2) + (id - Kind::RestrictedInvisible));
    if (id == Kind::RouteChecker)
        return rt::toByte(4LL * (width / 2));
    return previousFlags;
}

uint8_t headingFor(int16_t angle)
{
    const int a = angle == 180 ? 179 : angle;
    return rt::toByte((a + 180) / 1.40625);
}

int16_t angleFromHeading(uint8_t heading)
{
    return rt::sub16(rt::toInt16(heading * 1.40625), 180);
}

QByteArray header(uint8_t revision, int count, uint8_t laps)
{
    QByteArray h("LFSLYT", 6);
    h.append(char(0));
    h.append(char(revision));
    h.append(char(count % 256));
    h.append(char(rt::toByte(static_cast<long long>(count / 256))));
    h.append(char(laps));
    h.append(char(0));
    return h;
}

} // namespace lyt
