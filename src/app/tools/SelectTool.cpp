#include "core/LayoutDocument.h"
#include "view/HitTest.h"
#include "app/tools/LayoutTool.h"
#include "app/LayoutSession.h"
#include "view/ViewGeometry.h"

#include <QPainter>
#include <cmath>

namespace {
// A press that moves less than this is still a click.
constexpr int DragThreshold = 3;
enum { MergeMove = 5 };

void announce(LayoutDocument &doc)
{
    doc.SelectionUpdate(true);
    doc.RaiseUpdates();
}
} // namespace

void SelectTool::press(const ToolEvent &e)
{
    if (e.button != Qt::LeftButton)
        return;
    LayoutDocument &doc = document();
    m_from = m_to = e.pos;
    m_moved = QPoint();
    m_adding = e.modifiers & (Qt::ShiftModifier | Qt::ControlModifier);
    m_context.session().breakMerge();
    const QString hit = ObjectAtPoint(doc, m_context.view(), e.pos.x(), e.pos.y());
    m_hitKey = hit;
    if (hit.isEmpty()) {
        if (!m_adding && !doc.Selection().isEmpty()) {
            doc.SelectAll(false);
        }
        m_mode = Boxing;
        return;
    }
    const varnoObject &o = doc.Objects().Item(hit);
    if (m_adding) {
        doc.Select({hit}, LayoutDocument::SelectMode::Toggle);
        m_mode = o.Selected() ? Pending : Idle;
        return;
    }
    if (!o.Selected())
        doc.Select({hit}, LayoutDocument::SelectMode::Replace);
    m_mode = Pending;
}

void SelectTool::move(const ToolEvent &e)
{
    if (!(e.buttons & Qt::LeftButton) || m_mode == Idle)
        return;
    m_to = e.pos;
    if (m_mode == Pending) {
        if ((e.pos - m_from).manhattanLength() < DragThreshold)
            return;
        m_mode = Moving;
        m_context.session().breakMerge();
        m_mergeKey = m_context.session().mergeKeyFor(MergeMove);
    }
    if (m_mode == Moving) {
        const float zoom = m_context.view().Zoom();
        const QPoint total(int(std::lround((e.pos.x() - m_from.x()) / zoom)),
                           int(std::lround((e.pos.y() - m_from.y()) / zoom)));
        const QPoint step = total - m_moved;
        if (step.isNull())
            return;
        LayoutDocument &doc = document();
        record(QStringLiteral("Move"), m_mergeKey, [&] { m_moved += doc.MoveSelection(step.x(), step.y()); });
    }
}

void SelectTool::release(const ToolEvent &e)
{
    if (e.button != Qt::LeftButton)
        return;
    LayoutDocument &doc = document();
    switch (m_mode) {
    case Pending:
        // A plain click on a member of a group picks that one object.
        if (!m_adding && doc.Selection().size() > 1)
            doc.Select({m_hitKey}, LayoutDocument::SelectMode::Replace);
        break;
    case Moving:
        m_context.session().breakMerge();
        announce(doc);
        break;
    case Boxing: {
        int32_t x1 = m_from.x(), y1 = m_from.y(), x2 = e.pos.x(), y2 = e.pos.y();
        m_context.view().viewToLayout(x1, y1);
        m_context.view().viewToLayout(x2, y2);
        if ((e.pos - m_from).manhattanLength() >= DragThreshold) {
            const QStringList keys = ObjectsInBox(doc, QRect(QPoint(x1, y1), QPoint(x2, y2)));
            doc.Select(keys, m_adding ? LayoutDocument::SelectMode::Add : LayoutDocument::SelectMode::Replace);
        }
        break;
    }
    case Idle: break;
    }
    m_mode = Idle;
}

void SelectTool::paintOverlay(QPainter &p)
{
    if (m_mode != Boxing)
        return;
    const QRect box = QRect(m_from, m_to).normalized();
    p.save();
    p.setPen(QPen(QColor(255, 255, 255, 220), 1, Qt::DashLine));
    p.setBrush(QColor(80, 160, 255, 48));
    p.drawRect(box);
    p.restore();
}
