#include "catalogue/PalettePainter.h"

#include "catalogue/ObjectKinds.h"
#include "catalogue/PackList.h"
#include "catalogue/PaletteRows.h"
#include "base/Runtime.h"
#include "imaging/ColorMatrix.h"
#include "imaging/cGraphics.h"

#include <QLinearGradient>
#include <QPainter>

using namespace Palette;

QFont PaletteCaptionFont()
{
    QFont font;
    // Tahoma first; the others are its usual stand-ins, closest first.
    font.setFamilies({QStringLiteral("Tahoma"), QStringLiteral("Verdana"), QStringLiteral("DejaVu Sans"),
                      QStringLiteral("Nimbus Sans"), QStringLiteral("Sans Serif")});
    font.setPointSize(8);
    font.setWeight(QFont::Normal);
    font.setStyleHint(QFont::SansSerif);
    return font;
}

namespace {

bool rowVisible(int top, int height)
{
    return top + CellSize > 0 && top < height;
}

void paintSelection(QPainter &painter, int top)
{
    // A forward-diagonal gradient laid over a 52 x 48 box and tiled beyond it; only the
    // 48-pixel cell is filled.
    QLinearGradient gradient(QPointF(CellLeft, top), QPointF(CellLeft + 52, top + CellSize));
    gradient.setColorAt(0.0, SelectedLight);
    gradient.setColorAt(1.0, Qt::black);
    gradient.setSpread(QGradient::RepeatSpread);
    painter.fillRect(QRect(CellLeft, top, CellSize, CellSize), gradient);
}

void paintKindPanel(cGraphics &g, int height, const PaletteLook &look, const QFont &font)
{
    const QList<int16_t> kinds = PanelKinds(look.panel);
    for (int row = 0; row < kinds.size(); ++row) {
        const int top = PaletteRowTop(row, look.scroll);
        if (!rowVisible(top, height))
            continue;
        const int16_t id = kinds[row];
        const ObjectKind &kind = ObjectKinds()[static_cast<size_t>(id)];
        const bool available = kind.Available != 0;
        if (id == look.selectedItem && available)
            paintSelection(*g.Handle(), top);
        if (kind.HasImage && !kind.Image.isNull()) {
            const int w = rt::toInt16(double(kind.Scale) * kind.Image.Width());
            const int h = rt::toInt16(double(kind.Scale) * kind.Image.Height());
            g.DrawImageRectRectI(kind.Image, CellLeft + kind.OffsetX, top + kind.OffsetY, w, h, 0, 0,
                                 kind.Image.Width(), kind.Image.Height(),
                                 available ? nullptr : &ghostAttributes());
        }
        const QColor caption = available ? QColor(Qt::white) : UnavailableCaption;
        g.DrawString(kind.Caption, caption.rgba(), font, CaptionLeft, top + CaptionDown);
        if (look.panel == MarshallPanel) {
            const QColor pen = id == Kind::RouteChecker ? RouteCheckerPen : RestrictedPen;
            g.DrawEllipseI(pen.rgba(), 2.0f, CellLeft, top, CellSize, CellSize);
        }
    }
}

void paintPackPanel(cGraphics &g, int height, const PaletteLook &look, const PackList &packs, const QFont &font)
{
    for (int number = 1; number <= packs.Count(); ++number) {
        const int top = PaletteRowTop(number - 1, look.scroll);
        if (!rowVisible(top, height))
            continue;
        const PackEntry &pack = packs.Entry(number);
        g.DrawImageRectI(pack.Preview, CellLeft, top, CellSize, CellSize);
        g.DrawString(pack.Caption, QColor(Qt::white).rgba(), font, CaptionLeft, top + CaptionDown);
    }
}

} // namespace

void PaintPalette(QPainter &painter, int width, int height, const PaletteLook &look, const PackList &packs)
{
    painter.fillRect(QRect(0, 0, width, height), CanvasColour);
    cGraphics g;
    if (!g.CreateFromPainter(&painter))
        return;
    const QFont font = PaletteCaptionFont();
    if (look.panel == PackPanel)
        paintPackPanel(g, height, look, packs, font);
    else
        paintKindPanel(g, height, look, font);
}
