#pragma once
// Writing a picture to a device row by row. Rendered views can be far larger than
// anything else the program holds (ten times a background in each direction is
// 16300 x 29400 pixels for AU1), so no encoder here ever makes a second full-size copy:
// rows go from the picture to the encoder directly, or through a one-row buffer.
//
// The picture is QImage::Format_ARGB32_Premultiplied, as every cBitmap is. Formats
// without alpha (JPEG, BMP) get the colour over black, which for premultiplied pixels
// is simply the colour bytes.

#include <QImage>
#include <QString>

#include <functional>

class QIODevice;

namespace picture {

// Called now and then with the rows written so far and the rows there are in all
// (rows of every pass, for formats that read the picture twice). Returning false
// stops the writing: write() then returns false and the device holds a partial file.
using RowProgress = std::function<bool(qint64 done, qint64 total)>;

// Lets a writer start on a picture that is still being drawn: called before rows
// [0, rowsNeeded) are read and returns true once they are final. Empty when the picture
// is complete. Returning false means the rows will never come: the writing stops as if
// progress had said so.
using RowsReady = std::function<bool(int rowsNeeded)>;

struct WriteOptions {
    int quality = 90;          // JPEG only, 0..100
    RowProgress progress;
    RowsReady rowsReady;
};

// The format names write() knows, as cGDIP's encoders name them (upper case):
// "PNG", "JPEG", "BMP", "GIF" and "TIFF".
bool isKnownFormat(const QString &formatName);

// Writes picture to device in the named format. Throws rt::Error: 7 when a buffer
// cannot be had, 61 when the device refuses bytes, 57 for an encoder failure, 5 for a
// null or wrongly formatted picture. Returns false only when progress asked to stop.
bool write(const QImage &picture, QIODevice &device, const QString &formatName, const WriteOptions &options = {});

} // namespace picture
