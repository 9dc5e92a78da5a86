#include "app/ui/RotateButton.h"

#include <QMouseEvent>

RotateButton::RotateButton(QWidget *parent) : QToolButton(parent)
{
    // The right button steps by 90 degrees; it must not open a context menu.
    setContextMenuPolicy(Qt::PreventContextMenu);
}

void RotateButton::mousePressEvent(QMouseEvent *event)
{
    if (!isEnabled())
        return;
    m_pressed = event->button();
    if (m_pressed == Qt::LeftButton) {
        QToolButton::mousePressEvent(event);
        return;
    }
    // QToolButton only presses for the left button; the others get the same look.
    setDown(true);
    event->accept();
}

void RotateButton::mouseReleaseEvent(QMouseEvent *event)
{
    const Qt::MouseButton button = event->button();
    if (button == Qt::LeftButton)
        QToolButton::mouseReleaseEvent(event);
    else
        setDown(false);
    event->accept();
    if (button != m_pressed)
        return;
    m_pressed = Qt::NoButton;
    if (isEnabled() && rect().contains(event->position().toPoint()))
        emit releasedWith(button);
}
