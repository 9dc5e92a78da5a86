#include "imaging/ColorMatrix.h"

#include "base/Runtime.h"

#include <cstdint>

namespace {

// One channel value in 0..1 back to a byte, clamped.
inline int toChannel(double v)
{
    if (!(v > 0.0)) // also catches NaN
        return 0;
    if (v >= 1.0)
        return 255;
    return static_cast<int>(rt::roundHalfEven(v * 255.0));
}

// Which of the 4 x 4 colour part is off the diagonal: when none is, every output
// channel depends on its own input channel only and a table per channel does the work.
bool isDiagonalWithTranslation(const std::array<std::array<float, 5>, 5> &m)
{
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            if (r != c && m[r][c] != 0.0f)
                return false;
    return true;
}

// How the pixels being read are stored.
enum class Source { Premultiplied, Straight };

} // namespace

ColorMatrix::ColorMatrix()
{
    for (int i = 0; i < 5; ++i)
        m[i][i] = 1.0f;
}

ColorMatrix ColorMatrix::identity()
{
    return ColorMatrix();
}

// Both program-wide attributes are made with the skip-greys flag and with the same
// matrix for greys as for colours, so a grey pixel ends up transformed exactly like
// any other. One matrix here serves as both; the flag is kept for what it records.
ColorMatrix ColorMatrix::highlight()
{
    ColorMatrix c;
    for (int col = 0; col < 3; ++col)
        c.m[4][col] = 0.55f;
    c.m_skipGrays = true;
    return c;
}

ColorMatrix ColorMatrix::ghost()
{
    ColorMatrix c;
    c.m[3][3] = 0.55f;
    c.m_skipGrays = true;
    return c;
}

ColorMatrix ColorMatrix::tint(int r, int g, int b)
{
    ColorMatrix c;
    c.m[0][0] = static_cast<float>(r) / 255.0f;
    c.m[1][1] = static_cast<float>(g) / 255.0f;
    c.m[2][2] = static_cast<float>(b) / 255.0f;
    return c;
}

bool ColorMatrix::isIdentity() const
{
    for (int r = 0; r < 5; ++r)
        for (int c = 0; c < 5; ++c)
            if (m[r][c] != (r == c ? 1.0f : 0.0f))
                return false;
    return true;
}

QRgb ColorMatrix::apply(QRgb pixel) const
{
    const double in[5] = {qRed(pixel) / 255.0, qGreen(pixel) / 255.0, qBlue(pixel) / 255.0,
                          qAlpha(pixel) / 255.0, 1.0};
    int out[4];
    for (int c = 0; c < 4; ++c) {
        double v = 0.0;
        for (int k = 0; k < 5; ++k)
            v += in[k] * static_cast<double>(m[k][c]);
        out[c] = toChannel(v);
    }
    return qRgba(out[0], out[1], out[2], out[3]);
}

QImage ColorMatrix::applied(const QImage &image) const
{
    if (image.isNull())
        return QImage();
    if (isIdentity())
        return image.convertToFormat(QImage::Format_ARGB32_Premultiplied);

    // Read premultiplied and straight 32-bit pixels in place; anything else is brought
    // to straight ARGB once.
    QImage converted;
    const QImage *src = &image;
    Source form = Source::Straight;
    switch (image.format()) {
    case QImage::Format_ARGB32_Premultiplied: form = Source::Premultiplied; break;
    case QImage::Format_ARGB32:
    case QImage::Format_RGB32: break;
    default:
        converted = image.convertToFormat(QImage::Format_ARGB32);
        if (converted.isNull())
            return QImage();
        src = &converted;
        break;
    }
    const bool opaqueSource = src->format() == QImage::Format_RGB32;

    QImage out(src->size(), QImage::Format_ARGB32_Premultiplied);
    if (out.isNull())
        return QImage();
    const int w = src->width();
    const int h = src->height();

    if (isDiagonalWithTranslation(m)) {
        uint8_t lut[4][256];
        for (int c = 0; c < 4; ++c)
            for (int v = 0; v < 256; ++v)
                lut[c][v] = static_cast<uint8_t>(
                    toChannel(v / 255.0 * static_cast<double>(m[c][c]) + static_cast<double>(m[4][c])));
        for (int y = 0; y < h; ++y) {
            const QRgb *s = reinterpret_cast<const QRgb *>(src->constScanLine(y));
            QRgb *d = reinterpret_cast<QRgb *>(out.scanLine(y));
            QRgb lastIn = ~s[0];
            QRgb lastOut = 0;
            for (int x = 0; x < w; ++x) {
                QRgb p = s[x];
                if (p == lastIn) { // runs of one colour are the rule in object pictures
                    d[x] = lastOut;
                    continue;
                }
                lastIn = p;
                if (opaqueSource)
                    p |= 0xff000000u;
                else if (form == Source::Premultiplied)
                    p = qUnpremultiply(p);
                const QRgb r = qRgba(lut[0][qRed(p)], lut[1][qGreen(p)], lut[2][qBlue(p)], lut[3][qAlpha(p)]);
                lastOut = qPremultiply(r);
                d[x] = lastOut;
            }
        }
        return out;
    }

    for (int y = 0; y < h; ++y) {
        const QRgb *s = reinterpret_cast<const QRgb *>(src->constScanLine(y));
        QRgb *d = reinterpret_cast<QRgb *>(out.scanLine(y));
        for (int x = 0; x < w; ++x) {
            QRgb p = s[x];
            if (opaqueSource)
                p |= 0xff000000u;
            else if (form == Source::Premultiplied)
                p = qUnpremultiply(p);
            d[x] = qPremultiply(apply(p));
        }
    }
    return out;
}

const ColorMatrix &highlightAttributes()
{
    static const ColorMatrix attributes = ColorMatrix::highlight();
    return attributes;
}

const ColorMatrix &ghostAttributes()
{
    static const ColorMatrix attributes = ColorMatrix::ghost();
    return attributes;
}
