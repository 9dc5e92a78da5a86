#include "view/ui/frmLayout.h"

#include "base/ErrorLog.h"
#include "base/Language.h"
#include "catalogue/ObjectKinds.h"
#include "controls/cScrollbars.h"
#include "base/Dialogs.h"
#include "core/LayoutFormat.h"
#include "base/Runtime.h"
#include "imaging/ColorMatrix.h"
#include "imaging/cGraphics.h"
#include "view/DocumentEdit.h"
#include "view/ui/LayoutCanvas.h"
#include "view/ui/LayoutSaveImage.h"

#include <QGridLayout>
#include <QPainter>
#include <QScrollBar>
#include <cmath>

frmLayout::frmLayout(QWidget *parent) : QWidget(parent), m_doc(m_session.document())
{
    m_canvas = new LayoutCanvas(this);
    m_hbar = new QScrollBar(Qt::Horizontal, this);
    m_vbar = new QScrollBar(Qt::Vertical, this);
    auto *grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(0);
    grid->addWidget(m_canvas, 0, 0);
    grid->addWidget(m_vbar, 0, 1);
    grid->addWidget(m_hbar, 1, 0);
    setFocusProxy(m_canvas);

    m_bars = new cScrollbars(m_hbar, m_vbar, m_canvas, this);
    connect(m_bars, &cScrollbars::ValueChanged, this, [this](int bar, int value) {
        m_fitPending = false;
        m_view.setScroll(bar, value);
        Draw();
    });
    connect(m_bars, &cScrollbars::ModMouseScroll, this, [this](bool up, int keyCode) {
        m_fitPending = false;
        guarded(QStringLiteral("frmLayout.Scrollbars_ModMouseScroll"), [&] { m_view.modMouseScroll(up, keyCode); });
    });

    m_view.onUpdated = [this] {
        syncScrollBars();
        Draw();
        emit Updated();
    };
    m_doc.setViewToLayout([this](int32_t &x, int32_t &y) { m_view.viewToLayout(x, y); });
    connect(&m_doc, &LayoutDocument::Refused, this,
            [this](LayoutDocument::Refusal why, int16_t x, int16_t y) { emit Message(true, x, y, Lang(why)); });
    connect(&m_doc, &LayoutDocument::Updated, this, [this] {
        Draw();
        emit Updated();
    });
    connect(&m_doc, &LayoutDocument::ObjectUpdated, this, [this](bool s, bool c1, bool c2, bool c3, bool f) {
        Draw();
        emit ObjectUpdated(s, c1, c2, c3, f);
    });
    connect(&m_session, &LayoutSession::LayoutNameChanged, this, [this] { emit Updated(); });
    // The tab's unsaved-changes mark follows the history.
    connect(&m_session.undoStack(), &QUndoStack::indexChanged, this, [this] { emit Updated(); });
    connect(&m_session.undoStack(), &QUndoStack::cleanChanged, this, [this] { emit Updated(); });

    m_select = std::make_unique<SelectTool>(*this);
    m_zoomTool = std::make_unique<ZoomTool>(*this);
    m_measure = std::make_unique<MeasureTool>(*this);
    m_line = std::make_unique<LineTool>(*this);
}

frmLayout::~frmLayout()
{
    // The undo stack clears itself as it goes and reports the change; by then the
    // main window listening to this document may itself be half destroyed.
    m_session.undoStack().blockSignals(true);
    disconnect();
}

QWidget *frmLayout::canvas() const
{
    return m_canvas;
}

bool frmLayout::Initilize(const QString &FileName)
{
    if (!m_session.openLayout(FileName))
        return false;
    const lyt::TypeInfo *type = lyt::typeInfo(m_doc.LayoutType());
    m_view.setBackground(m_doc.BoundsWidth(), m_doc.BoundsHeight(), type ? int32_t(type->span) : 0);
    m_fitPending = true;
    if (m_canvas->width() > 0 && m_canvas->height() > 0)
        canvasResized(m_canvas->width(), m_canvas->height());
    return true;
}

// --- properties --------------------------------------------------------------------

void frmLayout::setZoom(float zoom)
{
    m_fitPending = false;
    guarded(QStringLiteral("frmLayout.Zoom"), [&] { m_view.setZoom(zoom); });
}

void frmLayout::setObjectZoom(int16_t percent)
{
    guarded(QStringLiteral("frmLayout.ObjectZoom"), [&] { m_view.setObjectZoom(percent); });
}

void frmLayout::setTool(int tool)
{
    if (tool == m_tool)
        return;
    if (LayoutTool *t = activeTool())
        t->cancel();
    m_tool = tool;
    m_canvas->setCursor(tool == ToolSelect ? Qt::ArrowCursor : Qt::CrossCursor);
    // The listeners drop the old tool's hint first; the new tool then says its own.
    emit ToolChanged(tool);
    if (LayoutTool *t = activeTool())
        hint(t->hint());
    Draw();
}

LayoutTool *frmLayout::activeTool() const
{
    switch (m_tool) {
    case ToolZoom: return m_zoomTool.get();
    case ToolMeasure: return m_measure.get();
    case ToolLine: return m_line.get();
    default: return m_select.get();
    }
}

void frmLayout::setLaps(uint8_t laps)
{
    if (laps == m_doc.Laps())
        return;
    record(Lang(65), mergeKeyFor(3), [&] { m_doc.setLaps(laps); });
}

QString frmLayout::Caption() const
{
    return m_session.Edited() ? m_session.LayoutName() + QStringLiteral(" *") : m_session.LayoutName();
}

void frmLayout::setBGName(const QString &name)
{
    guarded(QStringLiteral("frmLayout.BGName"), [&] {
        m_session.setBGName(name);
        m_painter.invalidate();
        m_view.setBackgroundSize(m_doc.BoundsWidth(), m_doc.BoundsHeight());
        m_view.setZoom(m_view.Zoom());
    });
}

// --- undo --------------------------------------------------------------------------

void frmLayout::record(const QString &text, int mergeKey, const std::function<void()> &fn)
{
    m_session.record(text, mergeKey, fn);
    Draw();
}

void frmLayout::Undo()
{
    if (LayoutTool *t = activeTool(); t && t->busy())
        return;
    breakMerge();
    guarded(QStringLiteral("frmLayout.Undo"), [&] { m_session.undoStack().undo(); });
}

void frmLayout::Redo()
{
    if (LayoutTool *t = activeTool(); t && t->busy())
        return;
    breakMerge();
    guarded(QStringLiteral("frmLayout.Redo"), [&] { m_session.undoStack().redo(); });
}

// --- operations --------------------------------------------------------------------

bool frmLayout::LayoutSave(bool SaveAs)
{
    const bool saved = m_session.LayoutSave(SaveAs);
    emit Updated();
    return saved;
}

void frmLayout::SelectionUpdate(bool Notify)
{
    guarded(QStringLiteral("frmLayout.SelectionUpdate"), [&] { m_doc.SelectionUpdate(Notify); });
}

void frmLayout::SelectionFlip(bool Vertical)
{
    guarded(QStringLiteral("frmLayout.SelectionFlip"),
            [&] { record(Lang(Vertical ? 136 : 135), 0, [&] { m_doc.SelectionFlip(Vertical); }); });
}

void frmLayout::ObjectRotate(int32_t angle)
{
    // Typing an angle or stepping it arrives as a series of calls; they undo together.
    guarded(QStringLiteral("frmLayout.ObjectRotate"),
            [&] { record(Lang(140), mergeKeyFor(1), [&] { m_doc.ObjectRotate(angle); }); });
}

void frmLayout::ObjectChange(uint8_t kind)
{
    guarded(QStringLiteral("frmLayout.ObjectChange"),
            [&] { record(Lang(125), 0, [&] { m_doc.ObjectChange(kind); }); });
}

void frmLayout::ObjectWidth(uint8_t width)
{
    guarded(QStringLiteral("frmLayout.ObjectWidth"),
            [&] { record(Lang(141), mergeKeyFor(2), [&] { m_doc.ObjectWidth(width); }); });
}

void frmLayout::ObjectAdd(uint8_t ID, int16_t X, int16_t Y, int16_t Angle, uint8_t Width, bool FromView, bool Selected)
{
    guarded(QStringLiteral("frmLayout.ObjectAdd"), [&] {
        record(Lang(210 + std::min<int>(ID, KindCount - 1)), 0, [&] {
            m_doc.ObjectAdd(ID, X, Y, Angle, Width, FromView, Selected);
            m_doc.SelectionUpdate(true);
            m_doc.RaiseUpdates();
        });
    });
}

void frmLayout::PackWrite()
{
    m_session.PackWrite();
}

void frmLayout::PackRead(const QString &name, int16_t x, int16_t y)
{
    m_session.PackRead(name, x, y);
    Draw();
}

void frmLayout::GoToStart()
{
    guarded(QStringLiteral("frmLayout.GoToStart"), [&] {
        const varnoObject *start = m_doc.HasStart() ? m_doc.Objects().Find(QStringLiteral("start")) : nullptr;
        if (!start)
            start = m_doc.StartMarker();
        if (start)
            centreOn(start->X(), start->Y());
    });
}

void frmLayout::ZoomToSelection()
{
    guarded(QStringLiteral("frmLayout.ZoomToSelection"), [&] {
        if (m_doc.Selection().isEmpty())
            return;
        // A margin keeps the outer objects' pictures inside the window.
        constexpr int margin = 48;
        const SelectionBox &b = m_doc.SelectionBounds();
        const double w = double(b.right - b.left) + 2 * margin;
        const double h = double(b.bottom - b.top) + 2 * margin;
        const double fit = std::min(m_view.clientWidth() / w, m_view.clientHeight() / h);
        m_fitPending = false;
        m_view.setZoom(float(fit));
        centreOn(b.left + (b.right - b.left) / 2, b.top + (b.bottom - b.top) / 2);
    });
}

void frmLayout::centreOn(int32_t x, int32_t y)
{
    m_view.centreOn(x, y);
    syncScrollBars();
    Draw();
}

void frmLayout::scrollBy(int32_t dx, int32_t dy)
{
    m_view.setScroll(0, m_view.ScrollX() + dx);
    m_view.setScroll(1, m_view.ScrollY() + dy);
    syncScrollBars();
    Draw();
}

void frmLayout::syncScrollBars()
{
    // A wheel notch moves about forty screen pixels whatever the zoom.
    const int small = std::max(1, int(std::lround(40.0 / std::max(0.001f, m_view.Zoom()))));
    for (int i = 0; i < 2; ++i) {
        const ViewGeometry::ScrollBar &b = m_view.bar(i);
        m_bars->setRange(i, b.maximum, b.largeStep, small);
        m_bars->setValue(i, b.value);
    }
}

void frmLayout::hint(const QString &text)
{
    emit Message(false, m_pointerX, m_pointerY, text);
}

void frmLayout::Draw()
{
    m_canvas->update();
}

void frmLayout::paintCanvas(QPainter &painter)
{
    painter.fillRect(m_canvas->rect(), QColor(0x3a, 0x3d, 0x41));
    cGraphics graphics;
    if (!graphics.CreateFromPainter(&painter))
        return;
    guarded(QStringLiteral("frmLayout.Draw"), [&] { m_painter.Draw(graphics, m_doc, m_session.Background(), m_view); }, false);
    if (m_preview.active) {
        for (size_t i = 0; i < m_preview.objects.size(); ++i) {
            const QPoint at = m_preview.at + m_preview.offsets[i];
            int32_t x = at.x(), y = at.y();
            guarded(QStringLiteral("frmLayout.ObjectDraw"), [&] {
                m_view.layoutToView(x, y);
                m_preview.objects[i]->Draw(x, y, graphics, m_view.ObjectScale(), &ghostAttributes());
            }, false);
        }
    }
    if (LayoutTool *t = activeTool())
        t->paintOverlay(painter);
}

void frmLayout::canvasResized(int width, int height)
{
    guarded(QStringLiteral("frmLayout.Form_Resize"), [&] {
        m_view.setClientSize(width, height);
        // Until the user zooms, a new layout keeps fitting the window: the window
        // takes its final size only after it has been shown.
        if (m_fitPending && width > 0 && height > 0 && m_view.backgroundWidth() > 0) {
            applyFirstFit();
            return;
        }
        m_view.resize();
        syncScrollBars();
    });
    Draw();
}

// A newly opened layout shows the whole area, centred on the start.
void frmLayout::applyFirstFit()
{
    const double fit = std::min(double(m_view.clientWidth()) / m_view.backgroundWidth(),
                                double(m_view.clientHeight()) / m_view.backgroundHeight());
    m_view.setZoom(float(fit));
    GoToStart();
    m_fitPending = true; // setZoom above does not count as the user's choice
}

bool frmLayout::QueryClose()
{
    if (!m_session.Edited())
        return true;
    const MsgResult answer =
        dialogs().message(Lang(169), m_session.LayoutName(), MsgIcon::Question, MsgButtons::YesNoCancel);
    if (answer == MsgResult::Cancel)
        return false;
    if (answer == MsgResult::Yes)
        return LayoutSave(false);
    return true;
}

void frmLayout::LayoutSaveImage()
{
    ::LayoutSaveImage(m_session, this);
}
