#include "catalogue/ui/Objectbar.h"

#include "base/Language.h"
#include "catalogue/ObjectKinds.h"
#include "catalogue/PalettePainter.h"
#include "catalogue/PaletteRows.h"
#include "catalogue/ui/PaletteGrip.h"

#include <QApplication>
#include <QButtonGroup>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWheelEvent>

using namespace Palette;

namespace {
// Below this width only the grip is shown: the palette is collapsed.
constexpr int CollapsedWidth = PaletteGrip::StripWidth + 24;

int16_t clamp16(int v)
{
    return static_cast<int16_t>(std::clamp(v, -32768, 32767));
}
} // namespace

Objectbar::Objectbar(QWidget *parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("Objectbar"));

    m_body = new QWidget(this);
    // The body may shrink to nothing so that the host can collapse the palette to its grip.
    m_body->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);

    m_buttonArea = new QWidget(m_body);
    auto *grid = new QGridLayout(m_buttonArea);
    grid->setContentsMargins(3, 3, 3, 3);
    grid->setSpacing(2);
    m_buttons = new QButtonGroup(this);
    m_buttons->setExclusive(true);
    connect(m_buttons, &QButtonGroup::idClicked, this, [this](int id) { ClickPanel(static_cast<int16_t>(id)); });

    m_canvas = new QWidget(m_body);
    m_canvas->setObjectName(QStringLiteral("picCanvas"));
    m_canvas->setMouseTracking(true);
    m_canvas->setAttribute(Qt::WA_OpaquePaintEvent);
    m_canvas->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    m_canvas->installEventFilter(this);

    m_scrollBar = new QScrollBar(Qt::Vertical, m_body);
    m_scrollBar->setSingleStep(RowPitch / 4);
    m_scrollBar->setRange(0, 0);
    connect(m_scrollBar, &QScrollBar::valueChanged, this, &Objectbar::Scrollbars_ValueChanged);

    auto *list = new QHBoxLayout;
    list->setContentsMargins(0, 0, 0, 0);
    list->setSpacing(0);
    list->addWidget(m_canvas, 1);
    list->addWidget(m_scrollBar);

    auto *bodyLayout = new QVBoxLayout(m_body);
    bodyLayout->setContentsMargins(0, 0, 0, 0);
    bodyLayout->setSpacing(0);
    bodyLayout->setSizeConstraint(QLayout::SetNoConstraint);
    bodyLayout->addWidget(m_buttonArea);
    bodyLayout->addLayout(list, 1);

    m_grip = new PaletteGrip(this);
    m_grip->setObjectName(QStringLiteral("picSide"));
    connect(m_grip, &PaletteGrip::dragged, this, &Objectbar::gripDragged);
    connect(m_grip, &PaletteGrip::doubleClicked, this, &Objectbar::BarDblClicked);

    auto *outer = new QHBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->setSpacing(0);
    outer->addWidget(m_body, 1);
    outer->addWidget(m_grip);
}

QSize Objectbar::sizeHint() const
{
    return {200, 560};
}

QSize Objectbar::minimumSizeHint() const
{
    return {PaletteGrip::StripWidth, 160};
}

void Objectbar::Initilize()
{
    QFont f = font();
    SetLocaleFont(f);
    setFont(f);
    for (int i = 0; i < PanelCount; ++i)
        AddPanel(static_cast<int16_t>(i), Lang(200 + i));
    FillCatalogue(); // reports its own errors " in Objectbar.Initilize"
    m_packs.Clear();
    m_hotItem = -1;
    m_dragItem = -1;
    ClickPanel(m_currentPanel);
}

void Objectbar::AddPanel(int16_t Index, const QString &Caption)
{
    if (Index < 0 || Index >= PanelCount)
        return;
    QToolButton *button = panelButton(Index);
    if (!button) {
        button = new QToolButton(m_buttonArea);
        button->setObjectName(QStringLiteral("cmdPanel%1").arg(Index));
        button->setCheckable(true);
        button->setToolButtonStyle(Qt::ToolButtonTextOnly);
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        button->setFocusPolicy(Qt::NoFocus);
        m_buttons->addButton(button, Index);
        auto *grid = static_cast<QGridLayout *>(m_buttonArea->layout());
        // Two columns; the last panel (packs) spans both.
        if (Index == PackPanel)
            grid->addWidget(button, Index / 2, 0, 1, 2);
        else
            grid->addWidget(button, Index / 2, Index % 2);
    }
    button->setText(Caption);
    button->setToolTip(Caption);
}

QToolButton *Objectbar::panelButton(int index) const
{
    return qobject_cast<QToolButton *>(m_buttons->button(index));
}

int Objectbar::ScrollPosition(int panel) const
{
    if (panel < 0 || panel >= PanelCount)
        return 0;
    return m_scroll[static_cast<size_t>(panel)];
}

void Objectbar::ClickPanel(int16_t Index)
{
    if (Index < 0 || Index >= PanelCount)
        return;
    showPanel(Index);
}

void Objectbar::showPanel(int index)
{
    m_currentPanel = static_cast<int16_t>(index);
    if (QToolButton *button = panelButton(index))
        button->setChecked(true);
    m_hotItem = -1;
    if (index == PackPanel)
        m_packs.Refresh();
    // The range belongs to the new panel before its remembered position goes back in,
    // or the old panel's range would cut the position short.
    const int remembered = m_scroll[static_cast<size_t>(index)];
    updateScrollRange();
    m_scrollBar->setValue(remembered);
    m_scroll[static_cast<size_t>(index)] = m_scrollBar->value();
    m_canvas->update();
}

void Objectbar::RefreshPacks()
{
    m_packs.Refresh();
    if (m_hotItem > m_packs.Count() && m_currentPanel == PackPanel)
        m_hotItem = -1;
    Repaint();
}

void Objectbar::Repaint()
{
    updateScrollRange();
    m_canvas->update();
}

void Objectbar::updateScrollRange()
{
    const int rows = PanelRowCount(m_currentPanel, m_packs.Count());
    const int visible = m_canvas->height();
    const PaletteScrollRange range = PaletteScroll(rows, visible);
    m_scrollBar->setPageStep(range.page > 0 ? range.page : std::max(1, visible));
    m_scrollBar->setRange(0, range.maximum);
    m_scrollBar->setEnabled(range.maximum > 0);
}

void Objectbar::Scrollbars_ValueChanged(int Value)
{
    m_scroll[static_cast<size_t>(m_currentPanel)] = Value;
    m_canvas->update();
}

void Objectbar::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    m_body->setVisible(width() >= CollapsedWidth);
}

void Objectbar::paletteXY(const QPoint &canvasPos, int16_t &x, int16_t &y) const
{
    const QPoint p = m_canvas->mapTo(this, canvasPos);
    x = clamp16(p.x());
    y = clamp16(p.y());
}

bool Objectbar::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_canvas)
        return QWidget::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::Paint: {
        QPainter painter(m_canvas);
        const PaletteLook look{m_currentPanel, m_selectedItem, m_scrollBar->value()};
        PaintPalette(painter, m_canvas->width(), m_canvas->height(), look, m_packs);
        return true;
    }
    case QEvent::Resize:
        updateScrollRange();
        return false;
    case QEvent::MouseMove: {
        const auto *me = static_cast<QMouseEvent *>(event);
        canvasMove(me->position().toPoint(), me->buttons());
        return true;
    }
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        return true;
    case QEvent::MouseButtonRelease: {
        const auto *me = static_cast<QMouseEvent *>(event);
        canvasRelease(me->position().toPoint(), me->button());
        return true;
    }
    case QEvent::Wheel:
        QApplication::sendEvent(m_scrollBar, event);
        return true;
    default:
        return false;
    }
}

void Objectbar::canvasMove(const QPoint &pos, Qt::MouseButtons buttons)
{
    if (buttons == Qt::NoButton) {
        m_dragItem = -1;
        m_hotItem = PaletteHitItem(m_currentPanel, pos.y(), m_scrollBar->value(), m_packs.Count());
        updateCursor();
        return;
    }
    if (!(buttons & Qt::LeftButton))
        return;
    if (m_dragItem == -1) {
        // Only an item that was hot can be picked up, so an unavailable kind never is.
        if (m_hotItem != -1) {
            m_dragItem = m_hotItem;
            updateCursor();
        }
        return;
    }
    int16_t x = 0, y = 0;
    paletteXY(pos, x, y);
    emit ItemDrag(m_dragItem, x, y);
}

void Objectbar::canvasRelease(const QPoint &pos, Qt::MouseButton button)
{
    if (button != Qt::LeftButton)
        return;
    if (m_dragItem >= 0) {
        const int16_t item = m_dragItem;
        // Dropped once: a press that follows straight away starts afresh.
        m_dragItem = -1;
        updateCursor();
        int16_t x = 0, y = 0;
        paletteXY(pos, x, y);
        if (m_currentPanel == PackPanel) {
            if (item <= m_packs.Count())
                emit PackDropped(m_packs.Entry(item).FileName, x, y);
        } else {
            emit ItemDropped(item, x, y);
        }
    }
    // A click is a release over the list itself.
    if (!m_canvas->rect().contains(pos))
        return;
    if (m_currentPanel != PackPanel) {
        m_selectedItem = m_hotItem;
        m_canvas->update();
    }
    emit ItemClicked(m_selectedItem);
}

void Objectbar::gripDragged(int x)
{
    emit BarDrag(static_cast<int16_t>(std::clamp(width() + x, 8, 200)));
}

void Objectbar::updateCursor()
{
    if (m_dragItem >= 0)
        m_canvas->setCursor(Qt::ClosedHandCursor);
    else if (m_hotItem >= 0)
        m_canvas->setCursor(Qt::OpenHandCursor);
    else
        m_canvas->unsetCursor();
}
