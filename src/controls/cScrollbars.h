#pragma once
// The two scroll bars of a view and its mouse wheel. The bars count in the view's own
// units (layout units for a document); a plain wheel turn scrolls, and a turn with
// Shift or Ctrl held is handed to the owner as ModMouseScroll to zoom.

#include <QObject>

class QScrollBar;
class QWidget;

class cScrollbars : public QObject {
    Q_OBJECT
public:
    // The bars are not owned; wheel turns are taken from wheelSource.
    cScrollbars(QScrollBar *horizontal, QScrollBar *vertical, QWidget *wheelSource, QObject *parent = nullptr);

    // Bar 0 is horizontal, 1 vertical. A maximum of zero or less hides nothing but
    // leaves the bar without range.
    void setRange(int bar, int maximum, int largeStep, int smallStep);
    int value(int bar) const;
    // Moves a bar without raising ValueChanged.
    void setValue(int bar, int value);

signals:
    void ValueChanged(int bar, int value);
    // up: the wheel turned away from the user; keyCode 16 for Shift, 17 for Ctrl.
    void ModMouseScroll(bool up, int keyCode);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QScrollBar *m_bars[2];
    bool m_quiet = false;
};
