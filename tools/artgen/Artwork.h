#pragma once
// Varno's picture generator draws every bundled picture from code, so the artwork can
// be reviewed, changed and rebuilt like the rest of the source. Everything here is
// deterministic: no system fonts (text is drawn with our own stroke glyphs) and no
// unseeded randomness, so two runs produce identical pictures.

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <vector>

namespace art {

// Object pictures are drawn at this many pixels per metre of the real object.
constexpr double kObjectScale = 22.8;
// Background maps use this many pixels per metre; their grid lines are 10 m apart.
constexpr double kMapScale = 5.7;
constexpr int kGridPixels = 57;

// ---------------------------------------------------------------- shared helpers

// A transparent ARGB32 canvas whose painter works in metres with the origin at the
// canvas centre and -Y pointing forward (up). The canvas is the object's size plus a
// small margin, so the editor can rotate the picture about its centre.
class MetreCanvas {
public:
    MetreCanvas(double widthMetres, double heightMetres, int marginPixels = 2);
    QPainter &p() { return m_painter; }
    // One pixel, in metres (for pen widths).
    static double px(double pixels) { return pixels / kObjectScale; }
    QImage finish();

private:
    QImage m_image;
    QPainter m_painter;
};

// A small, seeded generator (xorshift) for textures and scattered details.
class Rng {
public:
    explicit Rng(uint32_t seed) : m_state(seed ? seed : 0x9E3779B9u) {}
    uint32_t next();
    double uniform() { return next() / 4294967296.0; } // [0, 1)
    double range(double lo, double hi) { return lo + (hi - lo) * uniform(); }

private:
    uint32_t m_state;
};

// Centre lines of text in our stroke alphabet (digits, space, '.', and the letters
// A C D M O R S m), cap height `height`, starting at the origin's top-left; stroke it
// with a round pen. Unknown characters leave a gap.
QPainterPath strokeText(const QString &text, double height);
double strokeTextWidth(const QString &text, double height);

QPen outlinePen(double pixels, const QColor &color = QColor(28, 28, 30));
// Multiplies red, green and blue by the colour, as the editor does for tinted objects.
QImage tinted(const QImage &image, const QColor &tint);
// Scales a picture to fit a square cell, keeping its proportions (never enlarges
// by more than `maxUpscale`).
QImage fitted(const QImage &image, int cell, double maxUpscale = 4.0);
// Writes a PNG with a fixed resolution entry, creating the folder; false on failure.
bool savePng(const QImage &image, const QString &path);

// ---------------------------------------------------------------- objects

struct ObjectPicture {
    const char *name; // file name without ".png"
    QImage (*draw)();
    bool tinted; // drawn in greys only, coloured by the editor
};
// Every object picture, in palette order.
const std::vector<ObjectPicture> &objectPictures();

// Cones and tyres (ConeArt.cpp)
QImage drawConeRed();
QImage drawCone();
QImage drawConeRed3();
QImage drawConePointer();
QImage drawConeBlue();
QImage drawConeYellow();
QImage drawConeGreen();
QImage drawConeWhite();
QImage drawCone1();
QImage drawCone2();
QImage drawTyresWhite();
QImage drawTyres2White();
QImage drawTyresRed();
QImage drawTyres2Red();
QImage drawTyresBlue();
QImage drawTyres2Blue();
QImage drawTyresSmall();

// Boards, blocks and street furniture (ObjectArt.cpp)
QImage drawBannerRsc();
QImage drawBannerCromo();
QImage drawBannerAd1();
QImage drawBannerAd2();
QImage drawBannerAd3();
QImage drawBale();
QImage drawPost();
QImage drawPostColor();
QImage drawBarrier();
QImage drawBarrierLong();
QImage drawKeep();
QImage drawRamp();
QImage drawMarshall();
QImage drawMarshallPoint();

// Ground markings (MarkingArt.cpp)
QImage drawStart();
QImage drawLine();
QImage drawChalkAhead();
QImage drawChalkAhead2();
QImage drawChalk();
QImage drawChalk2();
QImage drawChalk3();
QImage drawChalkLine();

// ---------------------------------------------------------------- backgrounds

struct BackgroundPicture {
    const char *name; // file name without ".png"
    int width;
    int height;
    QImage (*draw)();
};
const std::vector<BackgroundPicture> &backgroundPictures();

QImage drawAutocross(); // AU1
QImage drawSkidPad();   // AU2
QImage drawDragStrip(); // AU34
QImage drawCarPark();   // BL3

// ---------------------------------------------------------------- built-in pictures

QImage drawPlaceholder();
// Toolbar pictures, 24 x 24, index 0 .. kToolbarIcons - 1.
constexpr int kToolbarIcons = 16;
QImage drawToolbarIcon(int index);
QImage drawAppIcon(int size);

// ---------------------------------------------------------------- contact sheet

struct SheetCell {
    QString caption;
    QImage picture; // tinted and stretched already
};
std::vector<SheetCell> contactSheetCells();
QImage drawContactSheet(const std::vector<SheetCell> &cells);
QString contactSheetCaptions(const std::vector<SheetCell> &cells);

} // namespace art
