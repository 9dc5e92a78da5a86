#pragma once
// The drawing surface of a document window. It paints only from its paint event and
// hands every mouse and key event to its frmLayout.

#include <QWidget>

class frmLayout;

class LayoutCanvas : public QWidget {
    Q_OBJECT
public:
    explicit LayoutCanvas(frmLayout *owner);

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    frmLayout *m_owner;
};
