#pragma once
// A tool button that answers every mouse button: the edit bar's rotate buttons step by
// 15 degrees with the left button, 90 with the right and reset with the middle one.

#include <QToolButton>

class RotateButton : public QToolButton {
    Q_OBJECT
public:
    explicit RotateButton(QWidget *parent = nullptr);

signals:
    // The button was released over itself; button is the one that was used.
    void releasedWith(Qt::MouseButton button);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    Qt::MouseButton m_pressed = Qt::NoButton;
};
