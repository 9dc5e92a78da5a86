#pragma once
// Undo for layout edits. Each edit runs as usual on the document; the document's state
// before and after is kept, and undo and redo put the whole state back, so objects,
// keys, order, flags, counters, route numbers and laps come back exactly.

#include "core/LayoutDocument.h"

#include <QUndoCommand>
#include <functional>

class QUndoStack;

// True when two states hold the same layout (the selection flags do not count).
bool SameContent(const DocumentState &a, const DocumentState &b);

class DocumentEdit : public QUndoCommand {
public:
    // mergeKey: consecutive edits with the same non-zero key become one step (a drag,
    // the typing of an angle). restored runs after every undo and redo.
    DocumentEdit(LayoutDocument &doc, const QString &text, DocumentState before, DocumentState after, int mergeKey,
                 std::function<void()> restored);

    void undo() override;
    void redo() override;
    int id() const override { return m_mergeKey != 0 ? 1 : -1; }
    bool mergeWith(const QUndoCommand *other) override;

private:
    LayoutDocument &m_doc;
    DocumentState m_before;
    DocumentState m_after;
    int m_mergeKey;
    std::function<void()> m_restored;
    bool m_done = true; // the edit has already been applied when the command is pushed
};

// Runs fn on the document and, when it changed the layout, pushes it as one undo step.
// An error inside fn still records what had changed by then, and is passed on.
// Returns true when a step was pushed or merged.
bool RecordEdit(QUndoStack &stack, LayoutDocument &doc, const QString &text, int mergeKey,
                const std::function<void()> &fn, const std::function<void()> &restored);
