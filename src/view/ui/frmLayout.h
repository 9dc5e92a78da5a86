#pragma once
// The window of one open layout. It owns the layout's session (document, undo history,
// background and file), the view geometry and the mouse tools; the main window drives it through the members below and
// listens to its three events (Message, Updated, ObjectUpdated).

#include "app/LayoutSession.h"
#include "app/tools/LayoutTool.h"
#include "view/LayoutPainter.h"
#include "view/ViewGeometry.h"

#include <QPointer>
#include <QStringList>
#include <QWidget>
#include <functional>
#include <memory>

class LayoutCanvas;
class cScrollbars;
class QKeyEvent;
class QScrollBar;

// Tool values: the plain selection tool and the three the keyboard and toolbar choose.
enum ToolId : int { ToolSelect = 0, ToolZoom = 6, ToolMeasure = 12, ToolLine = 13 };

class frmLayout : public QWidget, public ToolContext {
    Q_OBJECT
public:
    explicit frmLayout(QWidget *parent = nullptr);
    ~frmLayout() override;

    // Takes the type from the file's name, loads the background and reads the file when
    // it exists (a new, empty layout otherwise). False when the layout cannot be shown.
    bool Initilize(const QString &FileName);

    // --- properties ---------------------------------------------------------------
    float Zoom() const { return m_view.Zoom(); }
    void setZoom(float zoom) override;
    int16_t ObjectZoom() const { return m_view.ObjectZoom(); }
    void setObjectZoom(int16_t percent);
    int Tool() const { return m_tool; }
    void setTool(int tool);
    uint8_t Laps() const { return m_session.document().Laps(); }
    void setLaps(uint8_t laps);
    bool Edited() const { return m_session.Edited(); }
    QString LayoutName() const { return m_session.LayoutName(); }
    QString LayoutType() const { return m_session.LayoutType(); }
    int16_t ObjectCount() const { return m_session.document().ObjectCount(); }
    int TabIndex() const { return m_tabIndex; }
    void setTabIndex(int index) { m_tabIndex = index; }
    // The tab's text: the layout's name, marked while there are unsaved changes.
    QString Caption() const;
    QString BGName() const { return m_session.BGName(); }
    // Loads another picture from the backgrounds folder and re-fits the view.
    void setBGName(const QString &name);
    int16_t LineSpacing() const { return m_lineSpacing; }
    void setLineSpacing(int16_t spacing) { m_lineSpacing = spacing; }

    // --- operations the main window calls -----------------------------------------
    bool LayoutSave(bool SaveAs);
    void LayoutSaveImage();
    void SelectionUpdate(bool Notify = false);
    void SelectionFlip(bool Vertical);
    void ObjectRotate(int32_t angle);
    void ObjectChange(uint8_t kind);
    void ObjectWidth(uint8_t width);
    // Adds an object as one undo step; with FromView the position is in view pixels.
    void ObjectAdd(uint8_t ID, int16_t X, int16_t Y, int16_t Angle = 0, uint8_t Width = 0, bool FromView = false,
                   bool Selected = false);
    void PackWrite();
    // Places a pack centred on a layout point, as one undo step.
    void PackRead(const QString &name, int16_t x, int16_t y);
    void GoToStart();
    void ZoomToSelection();
    // Repaints (through the paint event).
    void Draw();

    // --- dragging from the palette (view pixels of this window) ----------------------
    // Shows a translucent preview of a kind, or of a pack file, under the pointer.
    void ObjectDraw(int kind, const QPoint &viewPos);
    void PackDraw(const QString &packFile, const QPoint &viewPos);
    void EndPreview();
    void DropKind(int kind, const QPoint &viewPos);
    void DropPack(const QString &packFile, const QPoint &viewPos);

    // Asks "Save changes before closing?" when there is something to lose; false when
    // the user cancelled (and the close must stop).
    bool QueryClose();

    // --- undo -------------------------------------------------------------------------
    QUndoStack *undoStack() { return &m_session.undoStack(); }
    void Undo();
    void Redo();
    // Runs an edit as one undo step (merged with the previous one when mergeKey matches).
    void record(const QString &text, int mergeKey, const std::function<void()> &fn);
    int mergeKeyFor(int kind) { return m_session.mergeKeyFor(kind); }
    void breakMerge() { m_session.breakMerge(); }

    // --- for the tools and tests ------------------------------------------------------
    LayoutSession &session() override { return m_session; }
    const LayoutSession &session() const { return m_session; }
    LayoutDocument &document() { return m_session.document(); }
    const LayoutDocument &document() const { return m_session.document(); }
    ViewGeometry &view() override { return m_view; }
    QWidget *canvas() const;
    QPoint pointer() const { return {m_pointerX, m_pointerY}; }
    // The pointer-move handler: keeps the last pointer position (layout units), reports
    // it and feeds the active tool. Also replayed by the , and . keys.
    void PointerMove(Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers, const QPointF &viewPos);
    // Key-down handler with the key code and modifier state (1 Shift, 2 Ctrl, 4 Alt).
    void KeyDown(int keyCode, int shift);
    // True for a key the table above acts on; such a key is the document's own, and no
    // menu shortcut may take it while the layout has the keyboard.
    static bool OwnsKey(const QKeyEvent *event);
    // Scrolls the view to a layout point at the middle of the window.
    void centreOn(int32_t x, int32_t y) override;
    void scrollBy(int32_t dx, int32_t dy);
    // Tells the status bar something (not a refusal).
    void hint(const QString &text) override;
    // What the tools see of this window besides the above.
    void viewChanged() override { syncScrollBars(); }
    void redraw() override { Draw(); }
    int16_t lineSpacing() const override { return m_lineSpacing; }
    void syncScrollBars();

signals:
    void Message(bool refusal, int16_t x, int16_t y, const QString &text);
    void Updated();
    void ObjectUpdated(bool start, bool checkpoint1, bool checkpoint2, bool checkpoint3, bool finish);
    void ToolChanged(int tool);

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    friend class LayoutCanvas;
    void paintCanvas(QPainter &painter);
    void canvasResized(int width, int height);
    void mouseEvent(QMouseEvent *event);
    // Keeps a view point as the last pointer position, in layout units.
    void setPointerAt(const QPointF &viewPos);
    // Puts the palette preview under a view point.
    void showPreviewAt(const QPoint &viewPos);
    void applyFirstFit();
    LayoutTool *activeTool() const;

    LayoutSession m_session;
    LayoutDocument &m_doc; // the session's, for brevity
    ViewGeometry m_view;
    LayoutPainter m_painter;
    LayoutCanvas *m_canvas = nullptr;
    QScrollBar *m_hbar = nullptr;
    QScrollBar *m_vbar = nullptr;
    cScrollbars *m_bars = nullptr;

    int m_tool = ToolSelect;
    std::unique_ptr<LayoutTool> m_select;
    std::unique_ptr<LayoutTool> m_zoomTool;
    std::unique_ptr<LayoutTool> m_measure;
    std::unique_ptr<LayoutTool> m_line;

    int16_t m_pointerX = 0;
    int16_t m_pointerY = 0;
    int16_t m_lineSpacing = 20;
    int m_tabIndex = -1;
    bool m_fitPending = true;
    bool m_panning = false;
    QPoint m_panFrom;

    // Palette drag preview.
    struct Preview {
        std::vector<std::unique_ptr<varnoObject>> objects; // at offsets from the centre
        std::vector<QPoint> offsets;
        QPoint at;
        QString source;
        bool active = false;
    } m_preview;
};
