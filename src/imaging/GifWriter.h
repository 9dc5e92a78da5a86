#pragma once
// GIF pictures, which Qt can read but not write. A picture goes out row by row, so an
// exporter can hand over a large rendering strip by strip; GifPalette decides the at
// most 256 colours beforehand.

#include <QHash>
#include <QImage>
#include <QList>
#include <QString>

#include <array>
#include <cstdint>
#include <vector>

class QIODevice;
struct GifFileType;

// The colours of a GIF and the mapping of pixels onto them. Either a fixed colour cube
// (one pass, for pictures not known in advance) or built from the pixels themselves:
// exact when there are at most 256 colours (255 when some pixels are fully
// transparent), otherwise a median cut of the colours weighted by how often they occur.
class GifPalette {
public:
    // 6 x 7 x 6 levels of red, green and blue, and a transparent entry.
    static GifPalette fixed();

    // First pass: counts the pixels of one row (ARGB32_Premultiplied values).
    void addRow(const QRgb *pixels, int count);
    void addImage(const QImage &image); // any format
    // Chooses the colours from what was counted. Idempotent.
    void build();

    const QList<QRgb> &colours() const { return m_colours; }
    // The entry fully transparent pixels map to, or -1 when there is none.
    int transparentIndex() const { return m_transparent; }
    // Palette indices of count ARGB32_Premultiplied pixels.
    void map(const QRgb *pixels, int count, uint8_t *indices) const;

private:
    static int bin(QRgb straight);
    int nearest(int r, int g, int b) const;
    void fillBinTable();

    // Counting.
    std::vector<uint64_t> m_count;    // per 5-5-5 bit colour bin
    std::vector<uint64_t> m_sum;      // per bin: red, green and blue sums, three per bin
    QList<QRgb> m_distinct;           // the distinct opaque colours in the order seen, while <= 256
    QHash<QRgb, int> m_distinctIndex; // their places in m_distinct
    bool m_tooMany = false;
    bool m_anyTransparent = false;
    bool m_built = false;

    // Result.
    QList<QRgb> m_colours;
    int m_transparent = -1;
    bool m_exact = false;
    std::vector<uint8_t> m_binIndex;  // per bin, when not exact
};

class GifWriter {
public:
    enum Error { NoError, InvalidArgument, WriteFailed, OutOfMemory, EncoderFailed };

    // Writes to device, which must be open for writing and outlive the writer.
    explicit GifWriter(QIODevice *device);
    ~GifWriter(); // abandons an unfinished picture
    GifWriter(const GifWriter &) = delete;
    GifWriter &operator=(const GifWriter &) = delete;

    // Starts a width x height picture (each at most 65535) with 1..256 colours;
    // transparentIndex is -1 for none.
    bool begin(int width, int height, const QList<QRgb> &palette, int transparentIndex = -1);
    // The next row, top to bottom: width palette indices.
    bool writeRow(const uint8_t *indices);
    // After the last row; false when rows are missing or the end could not be written.
    bool finish();

    // A whole picture in one go, with a palette built from its pixels.
    bool writeImage(const QImage &image);

    Error lastError() const { return m_error; }
    QString errorString() const { return m_errorString; }
    int rowsWritten() const { return m_row; }

private:
    bool fail(Error error, const QString &text);
    bool failGif(int gifError);
    static int output(GifFileType *gif, const uint8_t *bytes, int length);

    QIODevice *m_device;
    GifFileType *m_gif = nullptr;
    int m_width = 0;
    int m_height = 0;
    int m_row = 0;
    std::vector<uint8_t> m_line;
    Error m_error = NoError;
    QString m_errorString;
};
