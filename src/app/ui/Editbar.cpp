#include "app/ui/Editbar.h"

#include "base/ErrorLog.h"
#include "base/Language.h"
#include "app/ui/EditbarIcons.h"
#include "app/ui/RotateButton.h"
#include "catalogue/ObjectKinds.h"
#include "core/LayoutDocument.h"
#include "base/Runtime.h"

#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int ButtonSide = 32;

QFrame *separator(QWidget *parent)
{
    auto *line = new QFrame(parent);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    return line;
}

void setupToolButton(QToolButton *button, const QIcon &icon, const QString &name)
{
    button->setObjectName(name);
    button->setIcon(icon);
    button->setIconSize(QSize(24, 24));
    button->setFixedSize(ButtonSide, ButtonSide);
    // The caption stays the button's text and shows as its tool tip.
    button->setToolButtonStyle(Qt::ToolButtonIconOnly);
    button->setAutoRaise(false);
}

QSpinBox *spinBox(QWidget *parent, const QString &name, int lo, int hi, const QString &suffix)
{
    auto *box = new QSpinBox(parent);
    box->setObjectName(name);
    box->setRange(lo, hi);
    box->setSuffix(suffix);
    box->setAlignment(Qt::AlignRight);
    // A typed number is one change, reported when it is finished, not one per keystroke:
    // every report becomes an edit of the layout.
    box->setKeyboardTracking(false);
    box->setAccelerated(true);
    return box;
}

} // namespace

Editbar::Editbar(QWidget *parent) : QWidget(parent)
{
    setObjectName(u"Editbar"_s);

    m_lblName = new QLabel(this);
    m_lblName->setObjectName(u"lblName"_s);
    m_lblName->setWordWrap(true);
    m_lblName->setMinimumHeight(m_lblName->fontMetrics().height() * 2);
    m_lblName->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    QFont bold = m_lblName->font();
    bold.setBold(true);
    m_lblName->setFont(bold);

    m_cmdChange = new QPushButton(this);
    m_cmdChange->setObjectName(u"cmdChange"_s);
    m_cmdPack = new QPushButton(this);
    m_cmdPack->setObjectName(u"cmdPack"_s);
    connect(m_cmdChange, &QPushButton::clicked, this, &Editbar::ChangeClicked);
    connect(m_cmdPack, &QPushButton::clicked, this, &Editbar::PackClicked);

    m_lblAngle = new QLabel(this);
    m_lblAngle->setObjectName(u"lblAngle"_s);
    m_udbAngle = spinBox(this, u"udbAngle"_s, -180, 180, u"\u00B0"_s);
    m_lblAngle->setBuddy(m_udbAngle);
    connect(m_udbAngle, &QSpinBox::valueChanged, this,
            [this](int v) { emit AngleChanged(static_cast<int16_t>(v)); });

    m_lblWidth = new QLabel(this);
    m_lblWidth->setObjectName(u"lblWidth"_s);
    m_udbWidth = spinBox(this, u"udbWidth"_s, 0, 255, QString());
    m_lblWidth->setBuddy(m_udbWidth);
    connect(m_udbWidth, &QSpinBox::valueChanged, this,
            [this](int v) { emit WidthChanged(static_cast<int16_t>(v)); });

    for (QSpinBox *box : {m_udbAngle, m_udbWidth})
        box->installEventFilter(this);

    const QIcon rotateIcons[3] = {EditbarIcons::rotate(false), EditbarIcons::rotate(true),
                                  EditbarIcons::rotateHalf()};
    for (int i = 0; i < 3; ++i) {
        auto *button = new RotateButton(this);
        setupToolButton(button, rotateIcons[i], u"cmdRotate%1"_s.arg(i));
        connect(button, &RotateButton::releasedWith, this, [this, i](Qt::MouseButton b) { rotate(i, b); });
        m_cmdRotate[static_cast<size_t>(i)] = button;
    }
    for (int i = 0; i < 2; ++i) {
        auto *button = new QToolButton(this);
        setupToolButton(button, EditbarIcons::flip(i == 1), u"cmdFlip%1"_s.arg(i));
        connect(button, &QToolButton::clicked, this, [this, i] { emit FlipClicked(static_cast<int16_t>(i)); });
        m_cmdFlip[static_cast<size_t>(i)] = button;
    }

    // Layout: name; change and pack; angle with the turn and flip buttons; width.
    auto *commands = new QHBoxLayout;
    commands->setSpacing(4);
    commands->addWidget(m_cmdChange, 1);
    commands->addWidget(m_cmdPack, 1);

    auto *turns = new QHBoxLayout;
    turns->setSpacing(2);
    for (RotateButton *b : m_cmdRotate)
        turns->addWidget(b);
    turns->addSpacing(10);
    for (QToolButton *b : m_cmdFlip)
        turns->addWidget(b);
    turns->addStretch(1);

    auto *values = new QGridLayout;
    values->setHorizontalSpacing(8);
    values->setVerticalSpacing(6);
    values->addWidget(m_lblAngle, 0, 0);
    values->addWidget(m_udbAngle, 0, 1);
    values->addLayout(turns, 1, 0, 1, 2);
    values->addWidget(separator(this), 2, 0, 1, 2);
    values->addWidget(m_lblWidth, 3, 0);
    values->addWidget(m_udbWidth, 3, 1);
    values->setColumnStretch(1, 1);

    auto *outer = new QVBoxLayout(this);
    outer->setContentsMargins(8, 8, 8, 8);
    outer->setSpacing(8);
    outer->addWidget(m_lblName);
    outer->addLayout(commands);
    outer->addWidget(separator(this));
    outer->addLayout(values);
    outer->addStretch(1);

    Fill();
}

QSize Editbar::sizeHint() const
{
    return {200, QWidget::sizeHint().height()};
}

bool Editbar::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress && (watched == m_udbAngle || watched == m_udbWidth)) {
        auto *box = static_cast<QSpinBox *>(watched);
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Escape) {
            // Enter keeps what was typed, Escape shows the value again untouched.
            if (key == Qt::Key_Escape)
                box->setValue(box->value());
            else
                box->interpretText();
            emit EditDone();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

RotateButton *Editbar::cmdRotate(int index) const
{
    rt::checkIndex(index, 0, 2);
    return m_cmdRotate[static_cast<size_t>(index)];
}

QToolButton *Editbar::cmdFlip(int index) const
{
    rt::checkIndex(index, 0, 1);
    return m_cmdFlip[static_cast<size_t>(index)];
}

int16_t Editbar::Angle() const
{
    return static_cast<int16_t>(m_udbAngle->value());
}

int16_t Editbar::WidthValue() const
{
    return static_cast<int16_t>(m_udbWidth->value());
}

void Editbar::setTexts()
{
    QFont f = font();
    SetLocaleFont(f);
    setFont(f);
    m_cmdChange->setText(Lang(125));
    m_cmdPack->setText(Lang(126));
    const QString rotateTexts[3] = {u"15/90\u00B0 "_s + Lang(130), u"15/90\u00B0 "_s + Lang(131), u"180\u00B0"_s};
    for (int i = 0; i < 3; ++i) {
        m_cmdRotate[static_cast<size_t>(i)]->setText(rotateTexts[i]);
        m_cmdRotate[static_cast<size_t>(i)]->setToolTip(rotateTexts[i]);
    }
    for (int i = 0; i < 2; ++i) {
        m_cmdFlip[static_cast<size_t>(i)]->setText(Lang(135 + i));
        m_cmdFlip[static_cast<size_t>(i)]->setToolTip(Lang(135 + i));
    }
    m_lblAngle->setText(Lang(140) + u":"_s);
    m_lblWidth->setText(Lang(141) + u":"_s);
}

void Editbar::setCount(int n, bool hasWidth)
{
    m_cmdChange->setEnabled(n >= 1);
    m_cmdPack->setEnabled(n > 1);
    m_lblAngle->setEnabled(n == 1);
    m_udbAngle->setEnabled(n == 1);
    for (RotateButton *b : m_cmdRotate)
        b->setEnabled(n >= 1);
    for (QToolButton *b : m_cmdFlip)
        b->setEnabled(n >= 2);
    m_lblWidth->setEnabled(n == 1 && hasWidth);
    m_udbWidth->setEnabled(n == 1 && hasWidth);
}

void Editbar::Fill()
{
    setTexts();
    m_lblName->setText(Lang(120));
    setCount(0, false);
}

void Editbar::Fill(const LayoutDocument &doc)
{
    // Showing a selection is not an edit: the boxes change without a word.
    const QSignalBlocker angleQuiet(m_udbAngle);
    const QSignalBlocker widthQuiet(m_udbWidth);
    guarded(u"Editbar.Fill"_s, [&] {
        const int n = int(doc.Selection().size());
        bool hasWidth = false;
        setTexts();
        if (n == 0) {
            m_lblName->setText(Lang(120));
        } else if (n == 1) {
            const varnoObject &object = doc.Objects().Item(doc.Selection().first().strKey);
            m_lblName->setText(ObjectKindAt(object.ID()).Caption);
            m_udbAngle->setValue(object.Angle());
            m_udbWidth->setValue(object.Width());
            hasWidth = object.Width() != 0;
        } else {
            m_lblName->setText(Lang(121) + u" ("_s + QString::number(n) + u")"_s);
            // The document turns a new group from 0, so the box starts there too and the
            // turn buttons give the group exactly their step.
            m_udbAngle->setValue(0);
        }
        setCount(n, hasWidth);
    });
}

void Editbar::rotate(int index, Qt::MouseButton button)
{
    guarded(u"Editbar.cmdRotate_MouseUp"_s, [&] {
        static constexpr int LeftSteps[3] = {-15, 15, 180};
        static constexpr int RightSteps[3] = {-90, 90, 180};
        int16_t angle = 0; // the middle button resets the heading
        if (button == Qt::LeftButton)
            angle = rt::add16(m_udbAngle->value(), LeftSteps[index]);
        else if (button == Qt::RightButton)
            angle = rt::add16(m_udbAngle->value(), RightSteps[index]);
        if (angle >= 181)
            angle = rt::sub16(angle, 360);
        else if (angle < -180)
            angle = rt::add16(angle, 360);
        {
            // One report for one press: the box's own report would repeat it.
            const QSignalBlocker quiet(m_udbAngle);
            m_udbAngle->setValue(angle);
        }
        emit AngleChanged(static_cast<int16_t>(m_udbAngle->value()));
    });
}
