#pragma once
// The mouse tools of a document window. Each gets the pointer's press, moves and
// release in view pixels and may draw a preview over the layout. A tool sees only its
// ToolContext, never the window, so it runs and is tested without one.

#include <QList>
#include <QPoint>
#include <QPointF>
#include <QString>
#include <Qt>
#include <cstdint>
#include <functional>
#include <memory>

class QPainter;
class LayoutDocument;
class LayoutSession;
class ViewGeometry;
class varnoObject;

// What a tool may use of the window it works in.
class ToolContext {
public:
    virtual ~ToolContext() = default;
    virtual LayoutSession &session() = 0;
    virtual ViewGeometry &view() = 0;
    // Sets the zoom as the user's own choice.
    virtual void setZoom(float zoom) = 0;
    virtual void centreOn(int32_t x, int32_t y) = 0;
    // The view's scroll changed behind the window's back: its scroll bars follow.
    virtual void viewChanged() = 0;
    virtual void redraw() = 0;
    // Tells the status bar something (not a refusal).
    virtual void hint(const QString &text) = 0;
    // Layout units between the copies the line tool lays.
    virtual int16_t lineSpacing() const = 0;
};

struct ToolEvent {
    QPoint pos;                       // view pixels
    Qt::MouseButton button = Qt::NoButton; // the button that changed (press, release)
    Qt::MouseButtons buttons;         // the buttons held
    Qt::KeyboardModifiers modifiers;
};

class LayoutTool {
public:
    explicit LayoutTool(ToolContext &context) : m_context(context) {}
    virtual ~LayoutTool() = default;

    virtual void press(const ToolEvent &) {}
    virtual void move(const ToolEvent &) {}
    virtual void release(const ToolEvent &) {}
    // Drawn after the layout, in view pixels.
    virtual void paintOverlay(QPainter &) {}
    // What the status bar shows while the tool is idle.
    virtual QString hint() const { return QString(); }
    // Drops a gesture in progress (tool change, Escape).
    virtual void cancel() {}
    // True while a gesture is in progress.
    virtual bool busy() const { return false; }

protected:
    LayoutDocument &document() const;
    // Runs an edit as one undo step and repaints.
    void record(const QString &text, int mergeKey, const std::function<void()> &fn);

    ToolContext &m_context;
};

// Clicks select, drags move the selection or draw a selection box.
class SelectTool : public LayoutTool {
public:
    using LayoutTool::LayoutTool;
    void press(const ToolEvent &e) override;
    void move(const ToolEvent &e) override;
    void release(const ToolEvent &e) override;
    void paintOverlay(QPainter &p) override;
    void cancel() override { m_mode = Idle; }
    bool busy() const override { return m_mode != Idle; }

private:
    enum Mode { Idle, Pending, Moving, Boxing };
    Mode m_mode = Idle;
    QPoint m_from;
    QPoint m_to;
    QPoint m_moved;        // layout units already applied during this drag
    QString m_hitKey;      // the object under the press
    int m_mergeKey = 0;
    bool m_adding = false; // Shift or Ctrl held at the press
};

// Click to zoom in about a point, right-click to zoom out, drag a box to fit it.
class ZoomTool : public LayoutTool {
public:
    using LayoutTool::LayoutTool;
    void press(const ToolEvent &e) override;
    void move(const ToolEvent &e) override;
    void release(const ToolEvent &e) override;
    void paintOverlay(QPainter &p) override;
    void cancel() override { m_dragging = false; }
    bool busy() const override { return m_dragging; }

private:
    bool m_dragging = false;
    QPoint m_from;
    QPoint m_to;
};

// Press and drag to read the distance between two points in metres.
class MeasureTool : public LayoutTool {
public:
    using LayoutTool::LayoutTool;
    void press(const ToolEvent &e) override;
    void move(const ToolEvent &e) override;
    void release(const ToolEvent &e) override;
    void paintOverlay(QPainter &p) override;
    QString hint() const override;
    void cancel() override { m_dragging = false; }
    bool busy() const override { return m_dragging; }
    // Metres between two layout points.
    double distance(const QPointF &a, const QPointF &b) const;

private:
    bool m_dragging = false;
    QPointF m_from;     // layout units, so the line stays put while scrolling
    QPointF m_to;
    bool m_measured = false;
};

// With one object selected, press and drag to lay a row of copies of it. A press on the
// object itself starts the row there; the object counts as its first member.
class LineTool : public LayoutTool {
public:
    explicit LineTool(ToolContext &context);
    ~LineTool() override;
    void press(const ToolEvent &e) override;
    void move(const ToolEvent &e) override;
    void release(const ToolEvent &e) override;
    void paintOverlay(QPainter &p) override;
    QString hint() const override;
    void cancel() override;
    bool busy() const override { return m_dragging; }
    // Layout positions of the copies from a to b (layout units) at the spacing.
    static QList<QPoint> linePoints(const QPoint &a, const QPoint &b, int spacing);
    // "spacing 20 (3.5m)": a line spacing in layout units and in metres on doc.
    static QString spacingText(int16_t spacing, const LayoutDocument &doc);

private:
    // The copies along the line, without the one that would land on the source.
    void rebuild();

    QString m_sourceKey;
    QPoint m_source;                          // layout units
    std::unique_ptr<varnoObject> m_prototype; // drawn ghosted along the line
    bool m_dragging = false;
    QPoint m_from;      // layout units
    QPoint m_to;        // layout units, after the constraint
    QList<QPoint> m_points;
};

// Ctrl held: the end point turns to the nearest 15° direction around the start.
QPoint ConstrainTo15(const QPoint &from, const QPoint &to);
