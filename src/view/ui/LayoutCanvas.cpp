#include "view/ui/LayoutCanvas.h"

#include "view/ui/frmLayout.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

LayoutCanvas::LayoutCanvas(frmLayout *owner) : QWidget(owner), m_owner(owner)
{
    // The whole surface is repainted every time, so Qt need not clear it first; that
    // and the back buffer Qt keeps for every widget make repaints flicker-free.
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setMinimumSize(64, 64);
}

bool LayoutCanvas::event(QEvent *event)
{
    // The document's own keys reach it even where a menu shows the same shortcut: the
    // menu's copy then serves only when the keyboard is elsewhere, and no key acts twice.
    if (event->type() == QEvent::ShortcutOverride && frmLayout::OwnsKey(static_cast<QKeyEvent *>(event))) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

void LayoutCanvas::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    m_owner->paintCanvas(painter);
}

void LayoutCanvas::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    m_owner->canvasResized(width(), height());
}

void LayoutCanvas::mousePressEvent(QMouseEvent *event)
{
    setFocus(Qt::MouseFocusReason);
    m_owner->mouseEvent(event);
}

void LayoutCanvas::mouseMoveEvent(QMouseEvent *event)
{
    m_owner->mouseEvent(event);
}

void LayoutCanvas::mouseReleaseEvent(QMouseEvent *event)
{
    m_owner->mouseEvent(event);
}

void LayoutCanvas::mouseDoubleClickEvent(QMouseEvent *event)
{
    // A double click is a second press for the tools.
    m_owner->mouseEvent(event);
}

void LayoutCanvas::keyPressEvent(QKeyEvent *event)
{
    m_owner->keyPressEvent(event);
}
