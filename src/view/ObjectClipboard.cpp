#include "view/ObjectClipboard.h"

#include "core/LayoutDocument.h"
#include "base/Runtime.h"

ObjectClipboard &objectClipboard()
{
    static ObjectClipboard clipboard;
    return clipboard;
}

void CopySelection(const LayoutDocument &doc, ObjectClipboard &clipboard)
{
    const SelectionBox &box = doc.SelectionBounds();
    clipboard.width = rt::toInt16(static_cast<long long>(box.right) - box.left);
    clipboard.height = rt::toInt16(static_cast<long long>(box.bottom) - box.top);
    clipboard.count = rt::toInt16(static_cast<long long>(doc.Selection().size()));
    clipboard.records.clear();
    for (const selObject &s : doc.Selection()) {
        const varnoObject &o = doc.Objects().Item(s.strKey);
        clipboard.records.append({o.ID(), s.X, s.Y, o.Angle(), o.Width()});
    }
}

void PasteClipboard(LayoutDocument &doc, const ObjectClipboard &clipboard, int16_t x, int16_t y)
{
    doc.SelectAll(false);
    // Integer halves truncate toward zero, as the box sizes always did.
    const int16_t left = rt::sub16(x, clipboard.width / 2);
    const int16_t top = rt::sub16(y, clipboard.height / 2);
    for (int i = 0; i < clipboard.count && i < clipboard.records.size(); ++i) {
        const ClipboardRecord &r = clipboard.records[i];
        int16_t angle = r.Angle;
        uint8_t width = r.Width;
        bool fromView = false;
        bool selected = true;
        doc.ObjectAdd(r.ID, rt::add16(r.X, left), rt::add16(r.Y, top), angle, width, fromView, selected);
    }
    doc.SelectionUpdate(true);
    doc.RaiseUpdates();
}

void DeleteSelection(LayoutDocument &doc)
{
    const QList<selObject> selection = doc.Selection();
    for (const selObject &s : selection)
        doc.ObjectRemove(s.strKey);
    doc.SelectionUpdate(true);
    doc.RaiseUpdates();
}

void DuplicateSelection(LayoutDocument &doc, int16_t x, int16_t y)
{
    const QList<selObject> selection = doc.Selection();
    // The copies become the selection.
    doc.SelectAll(false);
    for (const selObject &s : selection) {
        const varnoObject &o = doc.Objects().Item(s.strKey);
        int16_t angle = o.Angle();
        uint8_t width = o.Width();
        bool fromView = false;
        bool selected = true;
        if (selection.size() == 1)
            doc.ObjectAdd(o.ID(), x, y, angle, width, fromView, selected);
        else
            doc.ObjectAdd(o.ID(), rt::add16(o.X(), 50), rt::add16(o.Y(), 50), angle, width, fromView, selected);
    }
    doc.SelectionUpdate(true);
    doc.RaiseUpdates();
}
