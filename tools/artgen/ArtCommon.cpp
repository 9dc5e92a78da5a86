#include "Artwork.h"

#include <QDir>
#include <QFileInfo>
#include <QImageWriter>
#include <QPointF>
#include <cmath>
#include <initializer_list>

namespace art {

MetreCanvas::MetreCanvas(double widthMetres, double heightMetres, int marginPixels)
{
    const int w = int(std::ceil(widthMetres * kObjectScale - 1e-6)) + 2 * marginPixels;
    const int h = int(std::ceil(heightMetres * kObjectScale - 1e-6)) + 2 * marginPixels;
    m_image = QImage(w, h, QImage::Format_ARGB32);
    m_image.fill(Qt::transparent);
    m_painter.begin(&m_image);
    m_painter.setRenderHint(QPainter::Antialiasing);
    m_painter.translate(w / 2.0, h / 2.0);
    m_painter.scale(kObjectScale, kObjectScale);
}

QImage MetreCanvas::finish()
{
    m_painter.end();
    return m_image;
}

uint32_t Rng::next()
{
    m_state ^= m_state << 13;
    m_state ^= m_state >> 17;
    m_state ^= m_state << 5;
    return m_state;
}

// ---------------------------------------------------------------- stroke alphabet

namespace {

// Glyphs on a 4 x 6 grid (y down); each is a list of polylines.
using Polyline = std::vector<QPointF>;
struct Glyph {
    QChar ch;
    std::vector<Polyline> lines;
    double advance = 5.5;
};

const std::vector<Glyph> &glyphs()
{
    static const std::vector<Glyph> table = {
        {'0', {{{1, 0}, {3, 0}, {4, 1}, {4, 5}, {3, 6}, {1, 6}, {0, 5}, {0, 1}, {1, 0}}}},
        {'1', {{{0.8, 1.2}, {2, 0}, {2, 6}}, {{0.8, 6}, {3.2, 6}}}},
        {'2', {{{0, 1}, {1, 0}, {3, 0}, {4, 1}, {4, 2.2}, {0, 6}, {4, 6}}}},
        {'3', {{{0, 0}, {4, 0}, {1.8, 2.6}, {3, 2.6}, {4, 3.6}, {4, 5}, {3, 6}, {1, 6}, {0, 5}}}},
        {'4', {{{3, 6}, {3, 0}, {0, 4.2}, {4, 4.2}}}},
        {'5', {{{4, 0}, {0.3, 0}, {0, 2.6}, {3, 2.6}, {4, 3.6}, {4, 5}, {3, 6}, {0, 6}}}},
        {'6', {{{3.6, 0}, {1.6, 0}, {0, 1.8}, {0, 5}, {1, 6}, {3, 6}, {4, 5}, {4, 3.6}, {3, 2.6}, {0, 2.6}}}},
        {'7', {{{0, 0}, {4, 0}, {1.4, 6}}}},
        {'8',
         {{{1, 0}, {3, 0}, {4, 0.9}, {4, 2}, {3, 2.9}, {1, 2.9}, {0, 2}, {0, 0.9}, {1, 0}},
          {{1, 2.9}, {0, 3.9}, {0, 5}, {1, 6}, {3, 6}, {4, 5}, {4, 3.9}, {3, 2.9}}}},
        {'9', {{{4, 3.4}, {1, 3.4}, {0, 2.4}, {0, 1}, {1, 0}, {3, 0}, {4, 1}, {4, 4.2}, {2.4, 6}, {0.4, 6}}}},
        {'m',
         {{{0, 6}, {0, 2.4}},
          {{0, 3.1}, {0.6, 2.4}, {1.4, 2.4}, {2, 3.1}, {2, 6}},
          {{2, 3.1}, {2.6, 2.4}, {3.4, 2.4}, {4, 3.1}, {4, 6}}}},
        {'R', {{{0, 6}, {0, 0}, {3, 0}, {4, 1}, {4, 2}, {3, 3}, {0, 3}}, {{2, 3}, {4, 6}}}},
        {'S',
         {{{4, 1}, {3, 0}, {1, 0}, {0, 1}, {0, 2}, {1, 3}, {3, 3}, {4, 4}, {4, 5}, {3, 6}, {1, 6}, {0, 5}}}},
        {'C', {{{4, 1}, {3, 0}, {1, 0}, {0, 1}, {0, 5}, {1, 6}, {3, 6}, {4, 5}}}},
        {'O', {{{1, 0}, {3, 0}, {4, 1}, {4, 5}, {3, 6}, {1, 6}, {0, 5}, {0, 1}, {1, 0}}}},
        {'M', {{{0, 6}, {0, 0}, {2, 3.2}, {4, 0}, {4, 6}}}},
        {'A', {{{0, 6}, {2, 0}, {4, 6}}, {{0.8, 3.8}, {3.2, 3.8}}}},
        {'D', {{{0, 0}, {0, 6}, {2.4, 6}, {4, 4.4}, {4, 1.6}, {2.4, 0}, {0, 0}}}},
        {'.', {{{0.5, 5.8}, {0.5, 6}}}, 2.0},
        {' ', {}, 3.0},
    };
    return table;
}

const Glyph *findGlyph(QChar c)
{
    for (const Glyph &g : glyphs())
        if (g.ch == c)
            return &g;
    return nullptr;
}

} // namespace

QPainterPath strokeText(const QString &text, double height)
{
    const double unit = height / 6.0;
    QPainterPath path;
    double x = 0;
    for (QChar c : text) {
        const Glyph *g = findGlyph(c);
        if (!g) {
            x += 3.0 * unit;
            continue;
        }
        for (const Polyline &line : g->lines) {
            path.moveTo(x + line[0].x() * unit, line[0].y() * unit);
            for (size_t i = 1; i < line.size(); ++i)
                path.lineTo(x + line[i].x() * unit, line[i].y() * unit);
        }
        x += g->advance * unit;
    }
    return path;
}

double strokeTextWidth(const QString &text, double height)
{
    const double unit = height / 6.0;
    double x = 0;
    for (QChar c : text) {
        const Glyph *g = findGlyph(c);
        x += (g ? g->advance : 3.0) * unit;
    }
    // The last glyph's trailing gap is not part of the ink.
    return text.isEmpty() ? 0 : x - 1.5 * unit;
}

// ---------------------------------------------------------------- image helpers

QPen outlinePen(double pixels, const QColor &color)
{
    QPen pen(color, MetreCanvas::px(pixels));
    pen.setJoinStyle(Qt::RoundJoin);
    pen.setCapStyle(Qt::RoundCap);
    return pen;
}

QImage tinted(const QImage &image, const QColor &tint)
{
    QImage out = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < out.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(out.scanLine(y));
        for (int x = 0; x < out.width(); ++x) {
            const QRgb c = row[x];
            row[x] = qRgba(qRed(c) * tint.red() / 255, qGreen(c) * tint.green() / 255,
                           qBlue(c) * tint.blue() / 255, qAlpha(c));
        }
    }
    return out;
}

QImage fitted(const QImage &image, int cell, double maxUpscale)
{
    const double scale = std::min({double(cell) / image.width(), double(cell) / image.height(), maxUpscale});
    const int w = std::max(1, int(std::lround(image.width() * scale)));
    const int h = std::max(1, int(std::lround(image.height() * scale)));
    return image.scaled(w, h, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

bool savePng(const QImage &image, const QString &path)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QImage out = image;
    // A fixed 72 dpi entry; otherwise Qt records the machine's screen resolution.
    out.setDotsPerMeterX(2835);
    out.setDotsPerMeterY(2835);
    QImageWriter writer(path, "png");
    // For PNG Qt maps quality onto zlib effort: 0 is the smallest file, still lossless.
    writer.setQuality(0);
    return writer.write(out);
}

// ---------------------------------------------------------------- catalogues

const std::vector<ObjectPicture> &objectPictures()
{
    static const std::vector<ObjectPicture> list = {
        {"start", drawStart, false},
        {"line", drawLine, true},
        {"chalk ahead", drawChalkAhead, false},
        {"chalk ahead2", drawChalkAhead2, false},
        {"chalk", drawChalk, false},
        {"chalk2", drawChalk2, false},
        {"chalk3", drawChalk3, false},
        {"chalk line", drawChalkLine, false},
        {"cone red", drawConeRed, false},
        {"cone", drawCone, true},
        {"cone red3", drawConeRed3, false},
        {"cone pointer", drawConePointer, true},
        {"cone blue", drawConeBlue, false},
        {"cone yellow", drawConeYellow, false},
        {"cone green", drawConeGreen, false},
        {"cone white", drawConeWhite, false},
        {"cone1", drawCone1, false},
        {"cone2", drawCone2, false},
        {"tyres white", drawTyresWhite, false},
        {"tyres2 white", drawTyres2White, false},
        {"tyres red", drawTyresRed, false},
        {"tyres2 red", drawTyres2Red, false},
        {"tyres blue", drawTyresBlue, false},
        {"tyres2 blue", drawTyres2Blue, false},
        {"tyres small", drawTyresSmall, false},
        {"banner rsc", drawBannerRsc, false},
        {"banner cromo", drawBannerCromo, false},
        {"banner ad1", drawBannerAd1, false},
        {"banner ad2", drawBannerAd2, false},
        {"banner ad3", drawBannerAd3, false},
        {"bale", drawBale, false},
        {"post", drawPost, false},
        {"post color", drawPostColor, true},
        {"barrier", drawBarrier, true},
        {"barrier long", drawBarrierLong, false},
        {"keep", drawKeep, false},
        {"ramp", drawRamp, false},
        {"marshall", drawMarshall, false},
        {"marshall point", drawMarshallPoint, false},
    };
    return list;
}

const std::vector<BackgroundPicture> &backgroundPictures()
{
    static const std::vector<BackgroundPicture> list = {
        {"AU1", 1630, 2940, drawAutocross},
        {"AU2", 1050, 1050, drawSkidPad},
        {"AU34", 580, 6260, drawDragStrip},
        {"BL3", 1220, 1970, drawCarPark},
    };
    return list;
}

} // namespace art
