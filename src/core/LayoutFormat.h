#pragma once
// The pieces of the .lyt format that need no document: the five layout types with
// their backgrounds and default start markers, the linear maps between background
// pixels and the simulator's world units, and the coding of one 8-byte record.

#include <QByteArray>
#include <QString>
#include <cstdint>

namespace lyt {

constexpr int HeaderSize = 12;
constexpr int RecordSize = 8;

// What a layout type brings with it. Looked up by the first three characters of the
// layout type, upper-cased.
struct TypeInfo {
    const char *code;           // "AU1", ...
    const char *background;     // default picture in the backgrounds folder
    double span;                // background width divided by this is BackgroundScale
    int16_t startX, startY, startAngle; // the default start marker
};
// nullptr for a type none of AU1, AU2, AU3, AU4, BL3.
const TypeInfo *typeInfo(const QString &layoutType);

// One linear map: file X = x / W * a - b, file Y = y / H * c + e; reading adds readDX
// and readDY to the file values before dividing.
struct PositionMap {
    double a, b, c, e;
    int readDX, readDY;
};
// The map of a type; for BL3 the revision picks it (250 or less, 251). nullptr when
// positions of that type and revision are not converted at all (BL3 above 251, or an
// unknown type).
const PositionMap *positionMap(const QString &layoutType, uint8_t revision);

// Pixel position to file units (16-bit, half to even; error 6 when it does not fit).
void toFile(const PositionMap &map, int width, int height, int16_t x, int16_t y, int16_t &fx, int16_t &fy);
// File units to pixels. The additions are 16-bit checked like the conversions.
void fromFile(const PositionMap &map, int width, int height, int16_t fx, int16_t fy, int16_t &x, int16_t &y);

struct FileRecord {
    int16_t x = 0;
    int16_t y = 0;
    uint8_t z = 0;
    uint8_t flags = 0;
    uint8_t index = 0;
    uint8_t heading = 0;
};
FileRecord parseRecord(const char *eightBytes);
void appendRecord(QByteArray &out, const FileRecord &r);

// A record's kind, width and angle as the document takes them.
struct DecodedObject {
    int id = 0;
    uint8_t width = 0;
    int16_t angle = 0;
};
// Errors: a control record with flags below 128 has a negative width (error 6).
DecodedObject decodeKind(const FileRecord &r, bool auSite);

// The flags byte written for a kind; previousFlags is repeated for kinds above 59.
uint8_t flagsFor(int id, uint8_t width, uint8_t previousFlags);
// The heading byte of an angle: 256 steps per turn, 180 written as 179.
uint8_t headingFor(int16_t angle);
// The angle a heading byte reads back as.
int16_t angleFromHeading(uint8_t heading);

// The 12-byte header as written.
QByteArray header(uint8_t revision, int count, uint8_t laps);

} // namespace lyt
