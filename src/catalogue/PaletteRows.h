#pragma once
// The palette's geometry without a widget: which kinds take a row on a panel, where the
// rows sit, which item is under the pointer and how far the list scrolls. The painting
// and the hit-testing both count rows through here, so they can never disagree.

#include <QList>
#include <cstdint>

namespace Palette {
constexpr int PanelCount = 7;
constexpr int PackPanel = 6;
constexpr int MarshallPanel = 5;
constexpr int RowPitch = 52;   // a 48-pixel cell and a 4-pixel gap
constexpr int TopMargin = 4;
constexpr int CellLeft = 4;
constexpr int CellSize = 48;
constexpr int CaptionLeft = 56;
constexpr int CaptionDown = 17; // caption top below the row top
constexpr int LastListedKind = 59; // kind 60 is the unmatched-index marker, never listed
} // namespace Palette

// The kinds with a row on a kind panel (0..5), in row order: category matches and the
// kind exists at the active site. Kinds that are not Available still take their row.
QList<int16_t> PanelKinds(int panel);

// Rows on a panel: its kinds, or the number of packs on the pack panel.
int PanelRowCount(int panel, int packCount);

// Top of row (0-based) when the panel is scrolled by scroll pixels.
int PaletteRowTop(int row, int scroll);

// The item under the pointer at canvas y: a kind that is Available (a kind that cannot
// be placed is never hot), or pack number 1..packCount on the pack panel; -1 for none.
// Rows are counted from y + scroll in whole pitches, without the top margin.
int16_t PaletteHitItem(int panel, int y, int scroll, int packCount);

struct PaletteScrollRange {
    int page = 0;
    int maximum = 0; // 0: nothing to scroll
};
// The scroll bar for a list of rows shown in a canvas visibleHeight pixels tall.
PaletteScrollRange PaletteScroll(int rows, int visibleHeight);
