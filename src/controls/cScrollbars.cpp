#include "controls/cScrollbars.h"

#include <QScrollBar>
#include <QWheelEvent>
#include <QWidget>
#include <algorithm>

cScrollbars::cScrollbars(QScrollBar *horizontal, QScrollBar *vertical, QWidget *wheelSource, QObject *parent)
    : QObject(parent), m_bars{horizontal, vertical}
{
    for (int i = 0; i < 2; ++i) {
        connect(m_bars[i], &QScrollBar::valueChanged, this, [this, i](int v) {
            if (!m_quiet)
                emit ValueChanged(i, v);
        });
    }
    if (wheelSource)
        wheelSource->installEventFilter(this);
}

void cScrollbars::setRange(int bar, int maximum, int largeStep, int smallStep)
{
    QScrollBar *b = m_bars[bar & 1];
    m_quiet = true;
    b->setRange(0, std::max(0, maximum));
    b->setPageStep(std::max(1, largeStep));
    b->setSingleStep(std::max(1, smallStep));
    b->setEnabled(maximum > 0);
    m_quiet = false;
}

int cScrollbars::value(int bar) const
{
    return m_bars[bar & 1]->value();
}

void cScrollbars::setValue(int bar, int value)
{
    m_quiet = true;
    m_bars[bar & 1]->setValue(value);
    m_quiet = false;
}

bool cScrollbars::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Wheel)
        return QObject::eventFilter(watched, event);
    auto *wheel = static_cast<QWheelEvent *>(event);
    const QPoint delta = wheel->angleDelta();
    const int turn = delta.y() != 0 ? delta.y() : delta.x();
    const Qt::KeyboardModifiers mods = wheel->modifiers();
    if (mods & (Qt::ShiftModifier | Qt::ControlModifier)) {
        if (turn != 0)
            emit ModMouseScroll(turn > 0, (mods & Qt::ControlModifier) ? 17 : 16);
        return true;
    }
    // A plain wheel scrolls down and up; a tilt wheel or a touch pad also sideways.
    auto scroll = [this](int bar, int amount) {
        if (amount == 0)
            return;
        QScrollBar *b = m_bars[bar];
        const int steps = -amount * 3 / 120;
        const int moved = std::clamp(b->value() + (steps != 0 ? steps : (amount > 0 ? -1 : 1)) * b->singleStep(),
                                     b->minimum(), b->maximum());
        b->setValue(moved);
    };
    scroll(1, delta.y());
    scroll(0, delta.x());
    return true;
}
