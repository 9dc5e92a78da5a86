#include "imaging/GifWriter.h"

#include <QHash>
#include <QIODevice>

#include <gif_lib.h>

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

constexpr int kBins = 1 << 15; // 5 bits each of red, green and blue

int binRed(int bin) { return (bin >> 10) & 31; }
int binGreen(int bin) { return (bin >> 5) & 31; }
int binBlue(int bin) { return bin & 31; }

// Straight, opaque colour of a premultiplied pixel.
inline QRgb opaqueColour(QRgb premultiplied)
{
    return qUnpremultiply(premultiplied) | 0xff000000u;
}

// The pixels of one row as ARGB32_Premultiplied, without copying when they already are.
const QRgb *premultipliedRow(const QImage &image, int y, std::vector<QRgb> &buffer)
{
    const QRgb *s = reinterpret_cast<const QRgb *>(image.constScanLine(y));
    const int w = image.width();
    switch (image.format()) {
    case QImage::Format_ARGB32_Premultiplied: return s;
    case QImage::Format_RGB32:
        for (int x = 0; x < w; ++x)
            buffer[size_t(x)] = s[x] | 0xff000000u;
        return buffer.data();
    case QImage::Format_ARGB32:
        for (int x = 0; x < w; ++x)
            buffer[size_t(x)] = qPremultiply(s[x]);
        return buffer.data();
    default: return nullptr;
    }
}

bool isRowFormat(QImage::Format f)
{
    return f == QImage::Format_ARGB32_Premultiplied || f == QImage::Format_RGB32 || f == QImage::Format_ARGB32;
}

} // namespace

// ---------------------------------------------------------------------------------
// GifPalette

int GifPalette::bin(QRgb c)
{
    return ((qRed(c) >> 3) << 10) | ((qGreen(c) >> 3) << 5) | (qBlue(c) >> 3);
}

GifPalette GifPalette::fixed()
{
    GifPalette p;
    for (int r = 0; r < 6; ++r)
        for (int g = 0; g < 7; ++g)
            for (int b = 0; b < 6; ++b)
                p.m_colours.append(qRgb(r * 255 / 5, g * 255 / 6, b * 255 / 5));
    p.m_transparent = int(p.m_colours.size());
    p.m_colours.append(qRgb(0, 0, 0));
    p.m_built = true;
    p.fillBinTable();
    return p;
}

void GifPalette::addRow(const QRgb *pixels, int count)
{
    if (m_built || count <= 0)
        return;
    if (m_count.empty()) {
        m_count.assign(kBins, 0);
        m_sum.assign(size_t(kBins) * 3, 0);
    }
    int x = 0;
    while (x < count) {
        // Pictures are mostly runs of one colour; count each run at once.
        const QRgb p = pixels[x];
        int run = 1;
        while (x + run < count && pixels[x + run] == p)
            ++run;
        x += run;
        if (qAlpha(p) == 0) {
            m_anyTransparent = true;
            continue;
        }
        const QRgb c = opaqueColour(p);
        if (!m_tooMany && !m_distinctIndex.contains(c)) {
            if (m_distinct.size() >= 256) {
                m_tooMany = true;
                m_distinctIndex.clear();
                m_distinct.clear();
            } else {
                m_distinctIndex.insert(c, int(m_distinct.size()));
                m_distinct.append(c);
            }
        }
        const size_t b = size_t(bin(c));
        m_count[b] += uint64_t(run);
        m_sum[b * 3] += uint64_t(qRed(c)) * uint64_t(run);
        m_sum[b * 3 + 1] += uint64_t(qGreen(c)) * uint64_t(run);
        m_sum[b * 3 + 2] += uint64_t(qBlue(c)) * uint64_t(run);
    }
}

void GifPalette::addImage(const QImage &image)
{
    if (image.isNull())
        return;
    const QImage converted = isRowFormat(image.format())
                                 ? image
                                 : image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    std::vector<QRgb> buffer(size_t(converted.width()));
    for (int y = 0; y < converted.height(); ++y)
        addRow(premultipliedRow(converted, y, buffer), converted.width());
}

void GifPalette::build()
{
    if (m_built)
        return;
    m_built = true;
    const int room = m_anyTransparent ? 255 : 256;

    if (!m_tooMany && m_distinct.size() <= room) {
        m_exact = true;
        m_colours = m_distinct;
    } else {
        m_distinctIndex.clear();
        m_distinct.clear();
        // Median cut over the used bins: repeatedly split the box whose colours spread
        // widest, weighted by how many pixels it holds, at the pixel median of its
        // widest channel.
        std::vector<int> bins;
        for (int b = 0; b < kBins; ++b)
            if (m_count[size_t(b)])
                bins.push_back(b);
        struct Box {
            size_t begin, end;
        };
        std::vector<Box> boxes{{0, bins.size()}};
        auto channel = [](int b, int ch) { return ch == 0 ? binRed(b) : ch == 1 ? binGreen(b) : binBlue(b); };
        while (int(boxes.size()) < room) {
            int best = -1, bestChannel = 0;
            double bestScore = 0.0;
            for (size_t i = 0; i < boxes.size(); ++i) {
                const Box &box = boxes[i];
                if (box.end - box.begin < 2)
                    continue;
                int lo[3] = {31, 31, 31}, hi[3] = {0, 0, 0};
                uint64_t pixels = 0;
                for (size_t k = box.begin; k < box.end; ++k) {
                    for (int ch = 0; ch < 3; ++ch) {
                        lo[ch] = std::min(lo[ch], channel(bins[k], ch));
                        hi[ch] = std::max(hi[ch], channel(bins[k], ch));
                    }
                    pixels += m_count[size_t(bins[k])];
                }
                int ch = 0;
                for (int c = 1; c < 3; ++c)
                    if (hi[c] - lo[c] > hi[ch] - lo[ch])
                        ch = c;
                const double score = double(hi[ch] - lo[ch] + 1) * double(pixels);
                if (score > bestScore) {
                    bestScore = score;
                    best = int(i);
                    bestChannel = ch;
                }
            }
            if (best < 0)
                break;
            Box box = boxes[size_t(best)];
            std::sort(bins.begin() + std::ptrdiff_t(box.begin), bins.begin() + std::ptrdiff_t(box.end),
                      [&](int a, int b) {
                          const int ca = channel(a, bestChannel), cb = channel(b, bestChannel);
                          return ca != cb ? ca < cb : a < b;
                      });
            uint64_t total = 0;
            for (size_t k = box.begin; k < box.end; ++k)
                total += m_count[size_t(bins[k])];
            uint64_t acc = 0;
            size_t split = box.begin + 1;
            for (size_t k = box.begin; k + 1 < box.end; ++k) {
                acc += m_count[size_t(bins[k])];
                split = k + 1;
                if (acc * 2 >= total)
                    break;
            }
            boxes[size_t(best)] = {box.begin, split};
            boxes.push_back({split, box.end});
        }
        for (const Box &box : boxes) {
            uint64_t n = 0, r = 0, g = 0, b = 0;
            for (size_t k = box.begin; k < box.end; ++k) {
                const size_t i = size_t(bins[k]);
                n += m_count[i];
                r += m_sum[i * 3];
                g += m_sum[i * 3 + 1];
                b += m_sum[i * 3 + 2];
            }
            m_colours.append(qRgb(int((r + n / 2) / n), int((g + n / 2) / n), int((b + n / 2) / n)));
        }
    }
    if (m_colours.isEmpty() && !m_anyTransparent)
        m_colours.append(qRgb(0, 0, 0));
    if (m_anyTransparent) {
        m_transparent = int(m_colours.size());
        m_colours.append(qRgb(0, 0, 0));
    }
    m_count.clear();
    m_count.shrink_to_fit();
    m_sum.clear();
    m_sum.shrink_to_fit();
    fillBinTable();
}

int GifPalette::nearest(int r, int g, int b) const
{
    int best = 0;
    int bestDistance = std::numeric_limits<int>::max();
    for (int i = 0; i < int(m_colours.size()); ++i) {
        if (i == m_transparent)
            continue;
        const QRgb c = m_colours[i];
        const int dr = qRed(c) - r, dg = qGreen(c) - g, db = qBlue(c) - b;
        const int d = dr * dr + dg * dg + db * db;
        if (d < bestDistance) {
            bestDistance = d;
            best = i;
        }
    }
    return best;
}

void GifPalette::fillBinTable()
{
    m_binIndex.assign(kBins, 0);
    for (int b = 0; b < kBins; ++b)
        m_binIndex[size_t(b)] =
            uint8_t(nearest((binRed(b) << 3) | 4, (binGreen(b) << 3) | 4, (binBlue(b) << 3) | 4));
}

void GifPalette::map(const QRgb *pixels, int count, uint8_t *indices) const
{
    QRgb last = 0;
    uint8_t lastIndex = 0;
    bool haveLast = false;
    for (int x = 0; x < count; ++x) {
        const QRgb p = pixels[x];
        if (haveLast && p == last) {
            indices[x] = lastIndex;
            continue;
        }
        uint8_t index;
        if (qAlpha(p) == 0 && m_transparent >= 0) {
            index = uint8_t(m_transparent);
        } else {
            const QRgb c = opaqueColour(p);
            const auto found = m_exact ? m_distinctIndex.constFind(c) : m_distinctIndex.constEnd();
            index = found != m_distinctIndex.constEnd() ? uint8_t(*found) : m_binIndex[size_t(bin(c))];
        }
        indices[x] = index;
        last = p;
        lastIndex = index;
        haveLast = true;
    }
}

// ---------------------------------------------------------------------------------
// GifWriter

GifWriter::GifWriter(QIODevice *device) : m_device(device) {}

GifWriter::~GifWriter()
{
    if (m_gif) {
        int error = 0;
        EGifCloseFile(m_gif, &error);
    }
}

bool GifWriter::fail(Error error, const QString &text)
{
    if (m_gif) {
        int ignored = 0;
        EGifCloseFile(m_gif, &ignored);
        m_gif = nullptr;
    }
    m_error = error;
    m_errorString = text;
    return false;
}

bool GifWriter::failGif(int gifError)
{
    const char *text = GifErrorString(gifError);
    const QString message = text ? QString::fromLatin1(text) : QStringLiteral("GIF error %1").arg(gifError);
    switch (gifError) {
    case E_GIF_ERR_WRITE_FAILED: return fail(WriteFailed, message);
    case E_GIF_ERR_NOT_ENOUGH_MEM: return fail(OutOfMemory, message);
    default: return fail(EncoderFailed, message);
    }
}

int GifWriter::output(GifFileType *gif, const uint8_t *bytes, int length)
{
    auto *self = static_cast<GifWriter *>(gif->UserData);
    const qint64 written = self->m_device->write(reinterpret_cast<const char *>(bytes), length);
    return written == length ? length : 0;
}

bool GifWriter::begin(int width, int height, const QList<QRgb> &palette, int transparentIndex)
{
    if (m_gif)
        return fail(InvalidArgument, QStringLiteral("A picture is already being written"));
    m_error = NoError;
    m_errorString.clear();
    if (!m_device || !m_device->isWritable())
        return fail(InvalidArgument, QStringLiteral("The output is not open for writing"));
    if (width < 1 || height < 1 || width > 65535 || height > 65535)
        return fail(InvalidArgument, QStringLiteral("A GIF is 1 to 65535 pixels wide and high"));
    if (palette.isEmpty() || palette.size() > 256 || transparentIndex >= int(palette.size()))
        return fail(InvalidArgument, QStringLiteral("A GIF has 1 to 256 colours"));

    // The colour table holds a power of two entries, at least two.
    int entries = 2;
    while (entries < palette.size())
        entries *= 2;
    std::vector<GifColorType> table(size_t(entries), GifColorType{0, 0, 0});
    for (int i = 0; i < int(palette.size()); ++i)
        table[size_t(i)] = GifColorType{GifByteType(qRed(palette[i])), GifByteType(qGreen(palette[i])),
                                        GifByteType(qBlue(palette[i]))};

    int error = 0;
    m_gif = EGifOpen(this, &GifWriter::output, &error);
    if (!m_gif)
        return failGif(error);
    if (transparentIndex >= 0)
        EGifSetGifVersion(m_gif, true); // the transparency block needs GIF89a
    ColorMapObject *map = GifMakeMapObject(entries, table.data());
    if (!map)
        return fail(OutOfMemory, QStringLiteral("No memory for the colour table"));
    const int screen = EGifPutScreenDesc(m_gif, width, height, 8, 0, map);
    GifFreeMapObject(map); // the screen description keeps its own copy
    if (screen == GIF_ERROR)
        return failGif(m_gif->Error);

    if (transparentIndex >= 0) {
        GraphicsControlBlock control{};
        control.DisposalMode = DISPOSAL_UNSPECIFIED;
        control.UserInputFlag = false;
        control.DelayTime = 0;
        control.TransparentColor = transparentIndex;
        GifByteType extension[4];
        const size_t length = EGifGCBToExtension(&control, extension);
        if (EGifPutExtension(m_gif, GRAPHICS_EXT_FUNC_CODE, int(length), extension) == GIF_ERROR)
            return failGif(m_gif->Error);
    }
    if (EGifPutImageDesc(m_gif, 0, 0, width, height, false, nullptr) == GIF_ERROR)
        return failGif(m_gif->Error);

    m_width = width;
    m_height = height;
    m_row = 0;
    m_line.assign(size_t(width), 0);
    return true;
}

bool GifWriter::writeRow(const uint8_t *indices)
{
    if (!m_gif || !indices)
        return fail(InvalidArgument, QStringLiteral("No picture is being written"));
    if (m_row >= m_height)
        return fail(InvalidArgument, QStringLiteral("More rows than the picture is high"));
    // giflib masks the line in place, so it gets a copy.
    std::memcpy(m_line.data(), indices, m_line.size());
    if (EGifPutLine(m_gif, m_line.data(), m_width) == GIF_ERROR)
        return failGif(m_gif->Error);
    ++m_row;
    return true;
}

bool GifWriter::finish()
{
    if (!m_gif)
        return m_error == NoError ? fail(InvalidArgument, QStringLiteral("No picture is being written")) : false;
    if (m_row != m_height)
        return fail(InvalidArgument, QStringLiteral("The picture is missing rows"));
    int error = 0;
    const int closed = EGifCloseFile(m_gif, &error);
    m_gif = nullptr;
    if (closed == GIF_ERROR)
        return failGif(error);
    return true;
}

bool GifWriter::writeImage(const QImage &image)
{
    if (image.isNull())
        return fail(InvalidArgument, QStringLiteral("There is no picture"));
    const QImage converted = isRowFormat(image.format())
                                 ? image
                                 : image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (converted.isNull())
        return fail(OutOfMemory, QStringLiteral("No memory to convert the picture"));

    GifPalette palette;
    palette.addImage(converted);
    palette.build();
    if (!begin(converted.width(), converted.height(), palette.colours(), palette.transparentIndex()))
        return false;
    std::vector<QRgb> buffer(size_t(converted.width()));
    std::vector<uint8_t> indices(size_t(converted.width()));
    for (int y = 0; y < converted.height(); ++y) {
        palette.map(premultipliedRow(converted, y, buffer), converted.width(), indices.data());
        if (!writeRow(indices.data()))
            return false;
    }
    return finish();
}
