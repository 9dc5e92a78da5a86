#pragma once
// The number rules every part of Varno shares. Layout files, packs and the view all
// work in 16-bit and 8-bit integers, so conversions round half to even and anything
// that does not fit is run-time error 6 "Overflow"; a bad index is error 9. Errors are
// thrown as rt::Error and caught by each procedure's handler (see base/ErrorLog.h),
// which logs "N: text in Class.Procedure".

#include <QString>
#include <cstdint>
#include <exception>

namespace rt {

enum ErrorNumber : int {
    InvalidCall = 5,
    Overflow = 6,
    OutOfMemory = 7,
    SubscriptOutOfRange = 9,
    DivisionByZero = 11,
    TypeMismatch = 13,
    BadFileNameOrNumber = 52,
    FileNotFound = 53,
    BadFileMode = 54,
    FileAlreadyOpen = 55,
    DeviceIOError = 57,
    FileAlreadyExists = 58,
    DiskFull = 61,
    InputPastEndOfFile = 62,
    BadFileName = 64,
    TooManyFiles = 67,
    DeviceUnavailable = 68,
    PermissionDenied = 70,
    DiskNotReady = 71,
    PathFileAccessError = 75,
    PathNotFound = 76,
    DuplicateKey = 457,
    InvalidPicture = 481,
};

// The standard description of an error number ("Overflow", "Subscript out of range", ...).
QString errorText(int number);

class Error : public std::exception {
public:
    explicit Error(int number, QString description = QString());
    int number() const { return m_number; }
    const QString &description() const { return m_description; }
    // "6: Overflow": the head of every logged error line.
    QString message() const;
    const char *what() const noexcept override { return m_what.constData(); }

private:
    int m_number;
    QString m_description;
    QByteArray m_what;
};

[[noreturn]] void raise(int number, const QString &description = QString());

// Round to nearest, ties to even (the platform's rule for every float-to-integer conversion).
double roundHalfEven(double v);

// Conversions with the overflow check.
int16_t toInt16(double v);   // rounds half to even first
uint8_t toByte(double v);    // rounds half to even first
int32_t toInt32(double v);   // rounds half to even first
int16_t toInt16(long long v);
uint8_t toByte(long long v);
int32_t toInt32(long long v);

// 16-bit arithmetic with the overflow check.
int16_t add16(int a, int b);
int16_t sub16(int a, int b);
int16_t mul16(int a, int b);
// Integer division truncating toward zero, as the platform's "\" operator.
int16_t idiv16(int a, int b);

// 32-bit arithmetic with the overflow check.
int32_t add32(long long a, long long b);
int32_t mul32(long long a, long long b);

// Raises error 9 unless lo <= i <= hi.
void checkIndex(long long i, long long lo, long long hi);

} // namespace rt
