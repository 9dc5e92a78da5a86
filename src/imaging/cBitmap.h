#pragma once
// One picture: object pictures, backgrounds and rendered views all live in a cBitmap.
// Pixels are kept as QImage::Format_ARGB32_Premultiplied, the fastest format for
// QPainter; alpha reads are the same in either form.

#include <QImage>
#include <QString>
#include <cstdint>

// The GDI+ rotate-flip values the program uses.
enum RotateFlipType : int {
    RotateNoneFlipNone = 0,
    Rotate90FlipNone = 1,
    Rotate180FlipNone = 2,
    Rotate270FlipNone = 3,
    RotateNoneFlipX = 4,
    Rotate90FlipX = 5,
    RotateNoneFlipY = 6,
    Rotate270FlipX = 7,
};

// Registers the pictures built into the program (placeholder, toolbar, icons).
void InitVarnoResources();

class cBitmap {
public:
    cBitmap() = default;

    // A new Width x Height ARGB bitmap; with scan0 the pixels are copied from it
    // (stride bytes per row, 32-bit ARGB), otherwise it starts fully transparent.
    // Returns false (and leaves the bitmap empty) when the memory is not there.
    bool CreateFromScan0(int width, int height, int stride = 0, const uchar *scan0 = nullptr);
    // The built-in picture with this resource number (100: the placeholder).
    bool CreateFromResource(int resourceId);
    // A Width x Height ARGB copy of source, stretched into it.
    bool CreateAsCopy(const cBitmap &source, int width, int height);
    // Loads a picture file; false leaves the bitmap empty with size 0.
    bool LoadFromFile(const QString &fileName);
    // Adopts an image (converted to the internal format).
    void setImage(const QImage &image);

    const QImage &Handle() const { return m_image; }
    QImage &image() { return m_image; }
    bool isNull() const { return m_image.isNull(); }
    int Width() const { return m_width; }
    int Height() const { return m_height; }

    // The alpha byte of the pixel; 0 outside the picture or when there is none.
    uint8_t GetPixelAlpha(int x, int y) const;
    // Rotates or flips in place. Like GDI+, the cached size is not refreshed.
    void RotateFlip(RotateFlipType type);
    // Replaces this bitmap by source turned by angle degrees (counter-clockwise on
    // screen for positive angles) in a square of max(W, H) + 32 pixels. The square
    // never grows with the angle, so a long picture's turned corners are clipped.
    void Rotate(const cBitmap &source, int16_t angle);

private:
    void cacheSize();
    QImage m_image;
    int m_width = 0;
    int m_height = 0;
};
