#pragma once
// The .pack file: a saved group of objects, as a box (the group's width and height)
// and a record for each object relative to the box's top left. Packs are listed on the
// palette and placed into layouts.

#include <QByteArray>
#include <QList>
#include <QString>
#include <cstdint>

// A pack file as stored: header and the records that are actually present.
struct PackRecord {
    uint8_t ID = 0;
    int16_t X = 0;
    int16_t Y = 0;
    int16_t Angle = 0;
    uint8_t Width = 0;
};
struct PackData {
    int16_t width = 0;
    int16_t height = 0;
    int16_t count = 0;          // as the header says
    QList<PackRecord> records;  // at most count; fewer when the file ends early
    bool complete() const { return records.size() >= count; }
};
// Reads a pack without placing it. Error 53 for a missing file, 62 when the 6-byte
// header is not all there. A negative count reads no records.
PackData ReadPackFile(const QString &path);
// The bytes of a pack file.
QByteArray PackBytes(int16_t width, int16_t height, const QList<PackRecord> &records);

