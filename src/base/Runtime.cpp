#include "base/Runtime.h"

#include <cmath>
#include <limits>

namespace rt {

QString errorText(int number)
{
    switch (number) {
    case 3: return QStringLiteral("Return without GoSub");
    case 5: return QStringLiteral("Invalid procedure call or argument");
    case 6: return QStringLiteral("Overflow");
    case 7: return QStringLiteral("Out of memory");
    case 9: return QStringLiteral("Subscript out of range");
    case 11: return QStringLiteral("Division by zero");
    case 13: return QStringLiteral("Type mismatch");
    case 52: return QStringLiteral("Bad file name or number");
    case 53: return QStringLiteral("File not found");
    case 54: return QStringLiteral("Bad file mode");
    case 55: return QStringLiteral("File already open");
    case 57: return QStringLiteral("Device I/O error");
    case 58: return QStringLiteral("File already exists");
    case 61: return QStringLiteral("Disk full");
    case 62: return QStringLiteral("Input past end of file");
    case 64: return QStringLiteral("Bad file name");
    case 67: return QStringLiteral("Too many files");
    case 68: return QStringLiteral("Device unavailable");
    case 70: return QStringLiteral("Permission denied");
    case 71: return QStringLiteral("Disk not ready");
    case 75: return QStringLiteral("Path/File access error");
    case 76: return QStringLiteral("Path not found");
    case 457: return QStringLiteral("This key is already associated with an element of this collection");
    case 481: return QStringLiteral("Invalid picture");
    default: return QStringLiteral("Application-defined or object-defined error");
    }
}

Error::Error(int number, QString description)
    : m_number(number), m_description(description.isEmpty() ? errorText(number) : std::move(description))
{
    m_what = message().toUtf8();
}

QString Error::message() const
{
    return QString::number(m_number) + QStringLiteral(": ") + m_description;
}

void raise(int number, const QString &description)
{
    throw Error(number, description);
}

double roundHalfEven(double v)
{
    // nearbyint honours the current rounding mode, which is to-nearest-even by default.
    return std::nearbyint(v);
}

namespace {
template <typename T> T checked(double v)
{
    if (std::isnan(v))
        raise(Overflow);
    const double r = roundHalfEven(v);
    if (r < double(std::numeric_limits<T>::min()) || r > double(std::numeric_limits<T>::max()))
        raise(Overflow);
    return static_cast<T>(r);
}
template <typename T> T checked(long long v)
{
    if (v < static_cast<long long>(std::numeric_limits<T>::min())
        || v > static_cast<long long>(std::numeric_limits<T>::max()))
        raise(Overflow);
    return static_cast<T>(v);
}
} // namespace

int16_t toInt16(double v) { return checked<int16_t>(v); }
uint8_t toByte(double v) { return checked<uint8_t>(v); }
int32_t toInt32(double v) { return checked<int32_t>(v); }
int16_t toInt16(long long v) { return checked<int16_t>(v); }
uint8_t toByte(long long v) { return checked<uint8_t>(v); }
int32_t toInt32(long long v) { return checked<int32_t>(v); }

int16_t add16(int a, int b) { return toInt16(static_cast<long long>(a) + b); }
int16_t sub16(int a, int b) { return toInt16(static_cast<long long>(a) - b); }
int16_t mul16(int a, int b) { return toInt16(static_cast<long long>(a) * b); }
int16_t idiv16(int a, int b)
{
    if (b == 0)
        raise(DivisionByZero);
    return toInt16(static_cast<long long>(a) / b);
}

int32_t add32(long long a, long long b) { return toInt32(a + b); }
int32_t mul32(long long a, long long b) { return toInt32(a * b); }

void checkIndex(long long i, long long lo, long long hi)
{
    if (i < lo || i > hi)
        raise(SubscriptOutOfRange);
}

} // namespace rt
