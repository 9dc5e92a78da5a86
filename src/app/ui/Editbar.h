#pragma once
// The edit bar: what is selected in the current layout, and the operations on it
// (change kind, add to a pack, turn, flip, line width). It keeps no layout state: the
// host calls Fill after every selection change and turns the signals into calls on the
// document.

#include <QWidget>
#include <array>
#include <cstdint>

class LayoutDocument;
class QLabel;
class QPushButton;
class QSpinBox;
class QToolButton;
class RotateButton;

class Editbar : public QWidget {
    Q_OBJECT
public:
    explicit Editbar(QWidget *parent = nullptr);

    // Shows the document's selection: every text, value and enabled state. Raises no
    // signal. A group sets the angle box to 0, the turn a new group starts from.
    void Fill(const LayoutDocument &doc);
    // The state with no document open: nothing selected, every operation off.
    void Fill();

    // The angle box's value, in degrees (-180..180).
    int16_t Angle() const;
    // The width box's value (0..255).
    int16_t WidthValue() const;

    // The controls, for hosts and tests.
    QLabel *lblName() const { return m_lblName; }
    QPushButton *cmdChange() const { return m_cmdChange; }
    QPushButton *cmdPack() const { return m_cmdPack; }
    QLabel *lblAngle() const { return m_lblAngle; }
    QSpinBox *udbAngle() const { return m_udbAngle; }
    RotateButton *cmdRotate(int index) const;
    QToolButton *cmdFlip(int index) const;
    QLabel *lblWidth() const { return m_lblWidth; }
    QSpinBox *udbWidth() const { return m_udbWidth; }

    QSize sizeHint() const override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

signals:
    void ChangeClicked();
    void PackClicked();
    void FlipClicked(int16_t index);
    void AngleChanged(int16_t angle);
    void WidthChanged(int16_t width);
    // Enter or Escape in a value box: the typing is over (kept or dropped).
    void EditDone();

private:
    void setTexts();
    void setCount(int n, bool hasWidth);
    void rotate(int index, Qt::MouseButton button);

    QLabel *m_lblName = nullptr;
    QPushButton *m_cmdChange = nullptr;
    QPushButton *m_cmdPack = nullptr;
    QLabel *m_lblAngle = nullptr;
    QSpinBox *m_udbAngle = nullptr;
    std::array<RotateButton *, 3> m_cmdRotate{};
    std::array<QToolButton *, 2> m_cmdFlip{};
    QLabel *m_lblWidth = nullptr;
    QSpinBox *m_udbWidth = nullptr;
};
