#pragma once
// A 5 x 5 colour matrix (rows R, G, B, A, W; row 4 is the translation row), applied to
// un-premultiplied pixels as GDI+ does: each output channel is the dot product of
// (r, g, b, a, 1) in 0..1 with a matrix column, clamped to 0..1 and scaled to 0..255.
// The "skip greys" flag records that greys (red = green = blue) go through a separate
// grey matrix; every matrix here uses itself as its grey matrix, so greys are
// transformed like any other pixel.

#include <QImage>
#include <array>

class ColorMatrix {
public:
    ColorMatrix(); // identity
    static ColorMatrix identity();
    // Adds 0.55 to red, green and blue; alpha unchanged. Selected objects are drawn so.
    static ColorMatrix highlight();
    // Scales alpha by 0.55. Previews and unavailable palette items are drawn so.
    static ColorMatrix ghost();
    // Multiplies red, green and blue by r/255, g/255, b/255.
    static ColorMatrix tint(int r, int g, int b);

    float at(int row, int col) const { return m[row][col]; }
    void set(int row, int col, float v) { m[row][col] = v; }
    bool skipGrays() const { return m_skipGrays; }
    void setSkipGrays(bool on) { m_skipGrays = on; }
    bool isIdentity() const;

    // One un-premultiplied ARGB pixel through the matrix.
    QRgb apply(QRgb pixel) const;
    // A copy of image (any format) with every pixel through the matrix, as ARGB32_Premultiplied.
    QImage applied(const QImage &image) const;

private:
    std::array<std::array<float, 5>, 5> m{};
    bool m_skipGrays = false;
};

// The two program-wide attributes, built once at start-up.
const ColorMatrix &highlightAttributes();
const ColorMatrix &ghostAttributes();
