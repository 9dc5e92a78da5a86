#pragma once
// The grip strip along the palette's edge: dragging it resizes the palette, a double
// click collapses or restores it. It only reports; the palette turns that into its events.

#include <QWidget>

class PaletteGrip : public QWidget {
    Q_OBJECT
public:
    static constexpr int StripWidth = 8;

    explicit PaletteGrip(QWidget *parent = nullptr);
    QSize sizeHint() const override { return {StripWidth, 64}; }
    QSize minimumSizeHint() const override { return {StripWidth, 16}; }

signals:
    // The pointer moved with the left button held; x is in the strip's own pixels.
    void dragged(int x);
    void doubleClicked();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
};
