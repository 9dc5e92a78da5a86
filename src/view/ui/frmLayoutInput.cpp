// Keyboard, mouse and palette-drag input of the document window.

#include "view/ui/frmLayout.h"

#include "base/ErrorLog.h"
#include "base/Language.h"
#include "base/Settings.h"
#include "catalogue/ObjectKinds.h"
#include "base/Runtime.h"
#include "view/ObjectClipboard.h"
#include "view/ui/LayoutCanvas.h"
#include "app/tools/LayoutTool.h"

#include <QDir>
#include <QKeyEvent>
#include <QMouseEvent>

namespace {

// Key codes as the keyboard table numbers them (the Windows virtual-key codes), so
// that the table reads the same whatever the toolkit calls the keys.
int keyCodeOf(const QKeyEvent *event)
{
    const int key = event->key();
    const bool keypad = event->modifiers() & Qt::KeypadModifier;
    if (key >= Qt::Key_A && key <= Qt::Key_Z)
        return key; // 65 .. 90
    switch (key) {
    case Qt::Key_Delete: return 46;
    case Qt::Key_Backspace: return 8;
    case Qt::Key_Escape: return 27;
    case Qt::Key_Left: return 37;
    case Qt::Key_Up: return 38;
    case Qt::Key_Right: return 39;
    case Qt::Key_Down: return 40;
    case Qt::Key_Plus: return keypad ? 107 : 187;
    case Qt::Key_Equal: return 187;
    case Qt::Key_Minus: return keypad ? 109 : 189;
    case Qt::Key_Underscore: return 189;
    case Qt::Key_Comma:
    case Qt::Key_Less: return 188;
    case Qt::Key_Period:
    case Qt::Key_Greater: return 190;
    default: return 0;
    }
}

int shiftStateOf(Qt::KeyboardModifiers m)
{
    return ((m & Qt::ShiftModifier) ? 1 : 0) | ((m & Qt::ControlModifier) ? 2 : 0) | ((m & Qt::AltModifier) ? 4 : 0);
}

enum MergeKinds { MergeNudge = 4 };

enum class KeyCommand {
    None, SelectAll, Copy, Paste, Delete, Duplicate, FitHeight, FitWidth, ZoomTool, LineTool, MeasureTool,
    ZoomIn, ZoomOut, Narrower, Wider, Undo, Redo, Nudge, Escape
};

// The document's key table: a key code and the modifier states it answers to, one bit
// per state (state 2 is Ctrl alone, so Ctrl+Shift+A is not select-all).
constexpr unsigned state(int shift) { return 1u << shift; }
constexpr unsigned AnyState = 0xFF;
constexpr unsigned CtrlOnly = state(2);

struct KeyBinding {
    int code;
    unsigned states;
    KeyCommand command;
};

constexpr KeyBinding KeyTable[] = {
    {65, CtrlOnly, KeyCommand::SelectAll},   {67, CtrlOnly, KeyCommand::Copy},
    {86, CtrlOnly, KeyCommand::Paste},       {46, AnyState, KeyCommand::Delete},
    {68, CtrlOnly, KeyCommand::Duplicate},   {72, CtrlOnly, KeyCommand::FitHeight},
    {87, CtrlOnly, KeyCommand::FitWidth},    {90, CtrlOnly, KeyCommand::ZoomTool},
    {76, CtrlOnly, KeyCommand::LineTool},    {77, CtrlOnly, KeyCommand::MeasureTool},
    {107, AnyState, KeyCommand::ZoomIn},     {187, AnyState, KeyCommand::ZoomIn},
    {109, AnyState, KeyCommand::ZoomOut},    {189, AnyState, KeyCommand::ZoomOut},
    {188, AnyState, KeyCommand::Narrower},   {190, AnyState, KeyCommand::Wider},
    {8, state(4), KeyCommand::Undo},         {89, CtrlOnly, KeyCommand::Redo},
    {90, state(3), KeyCommand::Redo},        {27, AnyState, KeyCommand::Escape},
    {37, state(0) | state(1), KeyCommand::Nudge}, {38, state(0) | state(1), KeyCommand::Nudge},
    {39, state(0) | state(1), KeyCommand::Nudge}, {40, state(0) | state(1), KeyCommand::Nudge},
};

KeyCommand commandFor(int keyCode, int shift)
{
    for (const KeyBinding &b : KeyTable)
        if (b.code == keyCode && (b.states & state(shift & 7)))
            return b.command;
    return KeyCommand::None;
}

} // namespace

void frmLayout::keyPressEvent(QKeyEvent *event)
{
    const int code = keyCodeOf(event);
    if (code == 0) {
        QWidget::keyPressEvent(event);
        return;
    }
    KeyDown(code, shiftStateOf(event->modifiers()));
    event->accept();
}

bool frmLayout::OwnsKey(const QKeyEvent *event)
{
    return commandFor(keyCodeOf(event), shiftStateOf(event->modifiers())) != KeyCommand::None;
}

void frmLayout::KeyDown(int keyCode, int shift)
{
    guarded(QStringLiteral("frmLayout.Form_KeyDown"), [&] {
        switch (commandFor(keyCode, shift)) {
        case KeyCommand::SelectAll:
            m_doc.SelectAll(true);
            Draw();
            break;
        case KeyCommand::Copy: CopySelection(m_doc, objectClipboard()); break;
        case KeyCommand::Paste:
            record(QStringLiteral("Paste"), 0, [&] { PasteClipboard(m_doc, objectClipboard(), m_pointerX, m_pointerY); });
            break;
        case KeyCommand::Delete: record(QStringLiteral("Delete"), 0, [&] { DeleteSelection(m_doc); }); break;
        case KeyCommand::Duplicate:
            record(QStringLiteral("Duplicate"), 0, [&] { DuplicateSelection(m_doc, m_pointerX, m_pointerY); });
            break;
        case KeyCommand::FitHeight: setZoom(72); break;
        case KeyCommand::FitWidth: setZoom(87); break;
        case KeyCommand::ZoomTool: setTool(ToolZoom); break;
        case KeyCommand::LineTool: setTool(ToolLine); break;
        case KeyCommand::MeasureTool: setTool(ToolMeasure); break;
        case KeyCommand::ZoomIn: setZoom(float(double(Zoom()) + double(Zoom()))); break;
        case KeyCommand::ZoomOut: setZoom(Zoom() / 2); break;
        case KeyCommand::Narrower: m_lineSpacing = rt::sub16(m_lineSpacing, 1); break;
        case KeyCommand::Wider: m_lineSpacing = rt::add16(m_lineSpacing, 1); break;
        case KeyCommand::Undo: Undo(); break;
        case KeyCommand::Redo: Redo(); break;
        case KeyCommand::Nudge: {
            const int step = (shift & 1) ? 10 : 1;
            const int dx = keyCode == 37 ? -step : keyCode == 39 ? step : 0;
            const int dy = keyCode == 38 ? -step : keyCode == 40 ? step : 0;
            if (!m_doc.Selection().isEmpty()) {
                record(QStringLiteral("Nudge"), mergeKeyFor(MergeNudge), [&] {
                    m_doc.MoveSelection(dx, dy);
                    m_doc.RaiseUpdates();
                });
            }
            break;
        }
        case KeyCommand::Escape:
            // One step back per press: the gesture in progress, then the selection, then
            // the tool itself, so a tool is never a trap.
            if (LayoutTool *t = activeTool(); t && t->busy())
                t->cancel();
            else if (!m_doc.Selection().isEmpty()) {
                m_doc.SelectAll(false);
                hint(activeTool()->hint()); // the object line asks for an object again
            } else
                setTool(ToolSelect);
            Draw();
            break;
        case KeyCommand::None: break;
        }
        // The spacing keys replay a pointer move at the last position, so a line being
        // laid is rebuilt at once with the new spacing.
        if (keyCode == 188 || keyCode == 190) {
            int32_t x = m_pointerX;
            int32_t y = m_pointerY;
            m_view.layoutToView(x, y);
            PointerMove(Qt::LeftButton, Qt::NoModifier, QPointF(float(x), float(y)));
            // Outside the line tool the new spacing is said once, so the key is not silent.
            if (m_tool != ToolLine)
                hint(Lang(41) + QStringLiteral(": ") + LineTool::spacingText(m_lineSpacing, m_doc));
        }
    });
}

void frmLayout::setPointerAt(const QPointF &viewPos)
{
    int32_t x = rt::toInt32(double(viewPos.x()));
    int32_t y = rt::toInt32(double(viewPos.y()));
    m_view.viewToLayout(x, y);
    m_pointerX = rt::toInt16(static_cast<long long>(x));
    m_pointerY = rt::toInt16(static_cast<long long>(y));
    m_doc.setPointer(m_pointerX, m_pointerY);
}

void frmLayout::PointerMove(Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers, const QPointF &viewPos)
{
    guarded(QStringLiteral("frmLayout.Form_MouseMove"), [&] {
        setPointerAt(viewPos);
        LayoutTool *tool = activeTool();
        ToolEvent e;
        e.pos = viewPos.toPoint();
        e.buttons = buttons;
        e.modifiers = modifiers;
        tool->move(e);
        emit Message(false, m_pointerX, m_pointerY, tool->hint());
    });
}

void frmLayout::mouseEvent(QMouseEvent *event)
{
    const QPoint pos = event->position().toPoint();
    if (event->type() != QEvent::MouseMove)
        m_fitPending = false;
    const bool zoomTool = m_tool == ToolZoom;
    const auto isPanButton = [&](Qt::MouseButton b) {
        return b == Qt::MiddleButton || (b == Qt::RightButton && !zoomTool);
    };
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        if (isPanButton(event->button())) {
            m_panning = true;
            m_panFrom = pos;
            m_canvas->setCursor(Qt::ClosedHandCursor);
            return;
        }
        break;
    case QEvent::MouseMove:
        if (m_panning) {
            // Whole layout units only, so the remainder is carried to the next move.
            const int dx = int(std::trunc((m_panFrom.x() - pos.x()) / m_view.Zoom()));
            const int dy = int(std::trunc((m_panFrom.y() - pos.y()) / m_view.Zoom()));
            if (dx != 0 || dy != 0) {
                scrollBy(dx, dy);
                m_panFrom -= QPoint(int(std::lround(dx * m_view.Zoom())), int(std::lround(dy * m_view.Zoom())));
            }
            return;
        }
        PointerMove(event->buttons(), event->modifiers(), event->position());
        return;
    case QEvent::MouseButtonRelease:
        if (m_panning && isPanButton(event->button())) {
            m_panning = false;
            m_canvas->setCursor(m_tool == ToolSelect ? Qt::ArrowCursor : Qt::CrossCursor);
            return;
        }
        break;
    default: return;
    }
    if (m_panning)
        return;
    ToolEvent e;
    e.pos = pos;
    e.button = event->button();
    e.buttons = event->buttons();
    e.modifiers = event->modifiers();
    LayoutTool *tool = activeTool();
    guarded(QStringLiteral("frmLayout.Form_MouseDown"), [&] {
        // Presses and releases report the pointer too, as moves do.
        setPointerAt(pos);
        if (event->type() == QEvent::MouseButtonRelease)
            tool->release(e);
        else
            tool->press(e);
    });
    Draw();
}

// --- dragging from the palette -------------------------------------------------------

void frmLayout::ObjectDraw(int kind, const QPoint &viewPos)
{
    guarded(QStringLiteral("frmLayout.ObjectDraw"), [&] {
        const QString source = QStringLiteral("kind:%1").arg(kind);
        if (m_preview.source != source) {
            m_preview.objects.clear();
            m_preview.offsets.clear();
            rt::checkIndex(kind, 0, KindCount - 1);
            auto o = CreateObjectForKind(kind);
            o->setID(int16_t(kind));
            o->Update(0, ClassForKind(kind) == ObjectClass::Normal ? 0 : 10);
            m_preview.objects.push_back(std::move(o));
            m_preview.offsets.push_back(QPoint());
            m_preview.source = source;
        }
        showPreviewAt(viewPos);
    }, false);
    Draw();
}

void frmLayout::PackDraw(const QString &packFile, const QPoint &viewPos)
{
    guarded(QStringLiteral("frmLayout.ObjectDraw"), [&] {
        const QString source = QStringLiteral("pack:") + packFile;
        if (m_preview.source != source) {
            m_preview.objects.clear();
            m_preview.offsets.clear();
            m_preview.source = source;
            const PackData pack = ReadPackFile(AppPath() + QStringLiteral("packs") + QDir::separator() + packFile);
            for (const PackRecord &r : pack.records) {
                if (r.ID >= KindCount)
                    continue;
                auto o = CreateObjectForKind(r.ID);
                o->setID(r.ID);
                o->Update(r.Angle, r.Width == 0 && ClassForKind(r.ID) != ObjectClass::Normal ? 10 : r.Width);
                m_preview.objects.push_back(std::move(o));
                m_preview.offsets.push_back(QPoint(r.X - pack.width / 2, r.Y - pack.height / 2));
            }
        }
        showPreviewAt(viewPos);
    }, false);
    Draw();
}

void frmLayout::showPreviewAt(const QPoint &viewPos)
{
    int32_t x = viewPos.x(), y = viewPos.y();
    m_view.viewToLayout(x, y);
    m_preview.at = QPoint(x, y);
    m_preview.active = true;
}

void frmLayout::EndPreview()
{
    if (!m_preview.active)
        return;
    m_preview.active = false;
    Draw();
}

void frmLayout::DropKind(int kind, const QPoint &viewPos)
{
    EndPreview();
    if (kind < 0 || kind >= KindCount)
        return;
    guarded(QStringLiteral("frmLayout.ObjectAdd"), [&] {
        setPointerAt(viewPos);
        record(Lang(210 + kind), 0, [&] {
            // The dropped object becomes the selection, ready to be turned or moved.
            const int before = m_doc.Objects().Count();
            int16_t angle = 0;
            uint8_t width = 0;
            bool fromView = true;
            bool selected = true;
            m_doc.ObjectAdd(uint8_t(kind), rt::toInt16(static_cast<long long>(viewPos.x())),
                            rt::toInt16(static_cast<long long>(viewPos.y())), angle, width, fromView, selected);
            // The dropped object alone becomes the selection.
            if (m_doc.Objects().Count() > before) {
                m_doc.Select({m_doc.Objects().At(before).Key()}, LayoutDocument::SelectMode::Replace);
            } else {
                m_doc.SelectionUpdate(true);
                m_doc.RaiseUpdates();
            }
        });
    });
    m_canvas->setFocus(Qt::OtherFocusReason);
}

void frmLayout::DropPack(const QString &packFile, const QPoint &viewPos)
{
    EndPreview();
    guarded(QStringLiteral("frmLayout.PackRead"), [&] {
        int32_t x = viewPos.x(), y = viewPos.y();
        m_view.viewToLayout(x, y);
        PackRead(packFile, rt::toInt16(static_cast<long long>(x)), rt::toInt16(static_cast<long long>(y)));
    });
    m_canvas->setFocus(Qt::OtherFocusReason);
}
