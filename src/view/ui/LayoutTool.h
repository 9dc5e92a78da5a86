#pragma once
// The mouse tools of a document window. Each gets the pointer's press, moves and
// release in view pixels and may draw a preview over the layout.

#include <QList>
#include <QPoint>
#include <QPointF>
#include <QString>
#include <Qt>
#include <memory>

class QPainter;
class frmLayout;
class varnoObject;

struct ToolEvent {
    QPoint pos;                       // view pixels
    Qt::MouseButton button = Qt::NoButton; // the button that changed (press, release)
    Qt::MouseButtons buttons;         // the buttons held
    Qt::KeyboardModifiers modifiers;
};

class LayoutTool {
public:
    explicit LayoutTool(frmLayout &layout) : m_layout(layout) {}
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
    frmLayout &m_layout;
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
    explicit LineTool(frmLayout &layout);
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
    // "spacing 20 (3.5m)": the document's line spacing in layout units and metres.
    static QString spacingText(const frmLayout &layout);

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
