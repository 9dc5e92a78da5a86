#include "catalogue/PaletteRows.h"

#include "catalogue/ObjectKinds.h"

QList<int16_t> PanelKinds(int panel)
{
    QList<int16_t> kinds;
    if (panel < 0 || panel >= Palette::PackPanel)
        return kinds;
    const auto &table = ObjectKinds();
    for (int k = 0; k <= Palette::LastListedKind; ++k) {
        const ObjectKind &kind = table[static_cast<size_t>(k)];
        if (kind.Category == panel && kind.Allowed)
            kinds.append(static_cast<int16_t>(k));
    }
    return kinds;
}

int PanelRowCount(int panel, int packCount)
{
    if (panel == Palette::PackPanel)
        return packCount;
    return int(PanelKinds(panel).size());
}

int PaletteRowTop(int row, int scroll)
{
    return Palette::TopMargin + Palette::RowPitch * row - scroll;
}

int16_t PaletteHitItem(int panel, int y, int scroll, int packCount)
{
    // Integer division truncates toward zero, so a pointer just above the canvas still
    // counts as row 0, as it always has.
    const int row = (y + scroll) / Palette::RowPitch;
    if (row < 0)
        return -1;
    if (panel == Palette::PackPanel)
        return row < packCount ? static_cast<int16_t>(row + 1) : int16_t(-1);
    const QList<int16_t> kinds = PanelKinds(panel);
    if (row >= kinds.size())
        return -1;
    const int16_t kind = kinds[row];
    return ObjectKinds()[static_cast<size_t>(kind)].Available ? kind : int16_t(-1);
}

PaletteScrollRange PaletteScroll(int rows, int visibleHeight)
{
    PaletteScrollRange range;
    const int total = rows * Palette::RowPitch;
    if (total > visibleHeight) {
        range.page = visibleHeight;
        range.maximum = total - visibleHeight + Palette::TopMargin;
    }
    return range;
}
