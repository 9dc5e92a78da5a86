#pragma once
// The object clipboard, one for the whole program so that any open layout can paste
// what another copied, and the keyboard's edit commands that use the selection: copy,
// paste, delete and duplicate. Each ends by rebuilding the selection and raising the
// document's updates; refusals of single objects come back as the document's Refused.

#include <QList>
#include <cstdint>

class LayoutDocument;

struct ClipboardRecord {
    uint8_t ID = 0;
    int16_t X = 0;      // offset inside the copied box
    int16_t Y = 0;
    int16_t Angle = 0;
    uint8_t Width = 0;
};

struct ObjectClipboard {
    int16_t width = 0;
    int16_t height = 0;
    int16_t count = 0;
    QList<ClipboardRecord> records;
};

// The program-wide clipboard (lives until the program ends).
ObjectClipboard &objectClipboard();

// Copies the selection; the document is not changed.
void CopySelection(const LayoutDocument &doc, ObjectClipboard &clipboard);
// Deselects everything and adds the clipboard centred on (x, y), selected.
void PasteClipboard(LayoutDocument &doc, const ObjectClipboard &clipboard, int16_t x, int16_t y);
// Removes every selected object.
void DeleteSelection(LayoutDocument &doc);
// One selected object is copied to (x, y); a group is copied 50 units right and down.
// The copies become the selection.
void DuplicateSelection(LayoutDocument &doc, int16_t x, int16_t y);
