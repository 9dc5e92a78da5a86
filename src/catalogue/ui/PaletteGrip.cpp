#include "catalogue/ui/PaletteGrip.h"

#include <QMouseEvent>
#include <QPainter>

PaletteGrip::PaletteGrip(QWidget *parent) : QWidget(parent)
{
    setFixedWidth(StripWidth);
    setCursor(Qt::SizeHorCursor);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
}

void PaletteGrip::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Button));
    // Two staggered columns of dots down the middle third, each dot a shadow pixel with
    // a light pixel below-right, so they read as small ridges.
    const QColor shadow = palette().color(QPalette::Dark);
    const QColor light = palette().color(QPalette::Light);
    const int top = height() / 3;
    const int bottom = height() - height() / 3;
    for (int y = top; y < bottom; y += 4) {
        for (int x : {2, 5}) {
            const int yy = x == 5 ? y + 2 : y;
            painter.setPen(light);
            painter.drawPoint(x + 1, yy + 1);
            painter.setPen(shadow);
            painter.drawPoint(x, yy);
        }
    }
}

void PaletteGrip::mouseMoveEvent(QMouseEvent *event)
{
    if (event->buttons() & Qt::LeftButton)
        emit dragged(event->position().toPoint().x());
}

void PaletteGrip::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        emit doubleClicked();
}
