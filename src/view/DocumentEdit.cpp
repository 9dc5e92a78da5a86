#include "view/DocumentEdit.h"

#include <QUndoStack>

bool SameContent(const DocumentState &a, const DocumentState &b)
{
    if (a.objects.size() != b.objects.size() || a.marshallCount != b.marshallCount || a.hasStart != b.hasStart
        || a.hasCheckpoint1 != b.hasCheckpoint1 || a.hasCheckpoint2 != b.hasCheckpoint2
        || a.hasCheckpoint3 != b.hasCheckpoint3 || a.hasFinish != b.hasFinish || a.laps != b.laps)
        return false;
    for (size_t i = 0; i < a.objects.size(); ++i) {
        const varnoObject &x = *a.objects[i];
        const varnoObject &y = *b.objects[i];
        if (x.Key() != y.Key() || x.ID() != y.ID() || x.X() != y.X() || x.Y() != y.Y() || x.Angle() != y.Angle()
            || x.Width() != y.Width() || x.RouteIndex() != y.RouteIndex())
            return false;
    }
    return true;
}

DocumentEdit::DocumentEdit(LayoutDocument &doc, const QString &text, DocumentState before, DocumentState after,
                           int mergeKey, std::function<void()> restored)
    : QUndoCommand(text), m_doc(doc), m_before(std::move(before)), m_after(std::move(after)), m_mergeKey(mergeKey),
      m_restored(std::move(restored))
{
}

void DocumentEdit::undo()
{
    m_doc.restore(m_before);
    m_done = false;
    if (m_restored)
        m_restored();
}

void DocumentEdit::redo()
{
    // The first redo is the push itself: the edit is already in the document.
    if (m_done)
        return;
    m_doc.restore(m_after);
    m_done = true;
    if (m_restored)
        m_restored();
}

bool DocumentEdit::mergeWith(const QUndoCommand *other)
{
    const auto *edit = dynamic_cast<const DocumentEdit *>(other);
    if (!edit || m_mergeKey == 0 || edit->m_mergeKey != m_mergeKey)
        return false;
    m_after = edit->m_after;
    // A drag that ends where it began leaves nothing to undo.
    if (SameContent(m_before, m_after))
        setObsolete(true);
    return true;
}

bool RecordEdit(QUndoStack &stack, LayoutDocument &doc, const QString &text, int mergeKey,
                const std::function<void()> &fn, const std::function<void()> &restored)
{
    DocumentState before = doc.snapshot();
    auto push = [&] {
        DocumentState after = doc.snapshot();
        if (SameContent(before, after))
            return false;
        stack.push(new DocumentEdit(doc, text, std::move(before), std::move(after), mergeKey, restored));
        return true;
    };
    try {
        fn();
    } catch (...) {
        push();
        throw;
    }
    return push();
}
