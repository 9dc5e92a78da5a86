#pragma once
// The palette: seven panels of object kinds and packs from which the user clicks or
// drags an item onto a layout. It fills the catalogue, shows it, and reports what the
// mouse does through its signals; it never touches a layout itself.
//
// Coordinates in ItemDrag, ItemDropped and PackDropped are the palette's own pixels;
// the host maps them with mapToGlobal. While the left button is held after a press on
// the list, moves keep arriving here even outside the palette, which is what lets the
// host follow a drag across a document.

#include "catalogue/PackList.h"

#include <QList>
#include <QWidget>
#include <array>
#include <cstdint>

class PaletteGrip;
class QButtonGroup;
class QScrollBar;
class QToolButton;

class Objectbar : public QWidget {
    Q_OBJECT
public:
    explicit Objectbar(QWidget *parent = nullptr);

    // Sets the fonts, creates the panel buttons, fills the catalogue, empties the pack
    // list and shows panel 0. Run again after a language change to take the new texts.
    void Initilize();
    // Shows panel Index as if its button had been pressed; ignored outside 0..6.
    void ClickPanel(int16_t Index);
    // Rebuilds the pack list for the active site and repaints.
    void RefreshPacks();
    // Creates (or renames) the button of panel Index.
    void AddPanel(int16_t Index, const QString &Caption);
    // Recomputes the scroll range and repaints the list; the host calls it after
    // changing the catalogue's Allowed and Available flags.
    void Repaint();

    int16_t CurrentPanel() const { return m_currentPanel; }
    int16_t HotItem() const { return m_hotItem; }
    int16_t DragItem() const { return m_dragItem; }
    int16_t SelectedItem() const { return m_selectedItem; }
    // The remembered scroll position of a panel (0..6).
    int ScrollPosition(int panel) const;
    const PackList &Packs() const { return m_packs; }

    // The parts, for hosts and tests that need to reach them.
    QWidget *canvas() const { return m_canvas; }
    QScrollBar *scrollBar() const { return m_scrollBar; }
    PaletteGrip *grip() const { return m_grip; }
    QToolButton *panelButton(int index) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    void BarDblClicked();
    void BarDrag(int16_t NewWidth);
    void ItemClicked(int16_t Item);
    void ItemDrag(int16_t Item, int16_t X, int16_t Y);
    void ItemDropped(int16_t Item, int16_t X, int16_t Y);
    void PackDropped(QString PackFile, int16_t X, int16_t Y);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private slots:
    void Scrollbars_ValueChanged(int Value);

private:
    void showPanel(int index);
    void updateScrollRange();
    void canvasMove(const QPoint &pos, Qt::MouseButtons buttons);
    void canvasRelease(const QPoint &pos, Qt::MouseButton button);
    void gripDragged(int x);
    void updateCursor();
    // A canvas point in the palette's own pixels, as the events carry it.
    void paletteXY(const QPoint &canvasPos, int16_t &x, int16_t &y) const;

    QWidget *m_body = nullptr;
    QWidget *m_buttonArea = nullptr;
    QButtonGroup *m_buttons = nullptr;
    QWidget *m_canvas = nullptr;
    QScrollBar *m_scrollBar = nullptr;
    PaletteGrip *m_grip = nullptr;

    int16_t m_currentPanel = 0;
    int16_t m_hotItem = -1;
    int16_t m_dragItem = -1;
    int16_t m_selectedItem = 0;
    // What each panel button's tag holds: the panel's scroll position.
    std::array<int, 7> m_scroll{};
    PackList m_packs;
};
