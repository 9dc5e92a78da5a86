#pragma once
// Paints the palette's item list onto any paint device: the canvas widget in the
// editor, a plain image in the tests.

#include <QColor>
#include <QFont>
#include <cstdint>

class PackList;
class QPainter;

struct PaletteLook {
    int16_t panel = 0;
    int16_t selectedItem = 0;
    int scroll = 0;
};

namespace Palette {
// Behind the rows; the captions are white, so the list sits on a dark ground.
inline const QColor CanvasColour(52, 54, 58);
inline const QColor SelectedLight(169, 169, 169);
inline const QColor UnavailableCaption(169, 169, 169);
inline const QColor RouteCheckerPen(0, 255, 0);
inline const QColor RestrictedPen(255, 0, 0);
} // namespace Palette

// Tahoma 8 pt, or the nearest font the system has.
QFont PaletteCaptionFont();

// Paints the rows of look.panel that meet the height pixels from the top, over a
// cleared ground of the given width.
void PaintPalette(QPainter &painter, int width, int height, const PaletteLook &look, const PackList &packs);
