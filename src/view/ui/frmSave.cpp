#include "view/ui/frmSave.h"

#include "base/Language.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {
QSpinBox *spinBox(QWidget *parent, const QString &name)
{
    auto *box = new QSpinBox(parent);
    box->setObjectName(name);
    // A value counts once it is complete: typing 300 must not pass through 3 and 30,
    // each of which would pull the other boxes along (and round them) on its way.
    box->setKeyboardTracking(false);
    box->setRange(0, 0);
    return box;
}

QLabel *label(QWidget *parent, const QString &name)
{
    auto *l = new QLabel(parent);
    l->setObjectName(name);
    return l;
}
} // namespace

frmSave::frmSave(QWidget *parent) : QDialog(parent)
{
    setObjectName(u"frmSave"_s);
    lblFile = label(this, u"lblFile"_s);
    lblFile->setTextInteractionFlags(Qt::TextSelectableByMouse);
    fraOptions = new QGroupBox(this);
    fraOptions->setObjectName(u"fraOptions"_s);
    lblWidth = label(fraOptions, u"lblWidth"_s);
    lblHeight = label(fraOptions, u"lblHeight"_s);
    lblPercent = label(fraOptions, u"lblPercent"_s);
    lblQuality = label(fraOptions, u"lblQuality"_s);
    udbWidth = spinBox(fraOptions, u"udbWidth"_s);
    udbHeight = spinBox(fraOptions, u"udbHeight"_s);
    udbPercent = spinBox(fraOptions, u"udbPercent"_s);
    udbQual = spinBox(fraOptions, u"udbQual"_s);
    cmdSave = new QPushButton(this);
    cmdSave->setObjectName(u"cmdSave"_s);
    cmdSave->setDefault(true);
    cmdCancel = new QPushButton(this);
    cmdCancel->setObjectName(u"cmdCancel"_s);

    auto *grid = new QGridLayout(fraOptions);
    grid->addWidget(lblWidth, 0, 0);
    grid->addWidget(udbWidth, 0, 1);
    grid->addWidget(lblHeight, 1, 0);
    grid->addWidget(udbHeight, 1, 1);
    grid->addWidget(lblPercent, 2, 0);
    grid->addWidget(udbPercent, 2, 1);
    grid->addWidget(lblQuality, 3, 0);
    grid->addWidget(udbQual, 3, 1);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdSave);
    buttons->addWidget(cmdCancel);
    auto *main = new QVBoxLayout(this);
    main->addWidget(lblFile);
    main->addWidget(fraOptions);
    main->addLayout(buttons);

    auto follow = [this](QSpinBox *box, void (SaveImageProportions::*set)(int)) {
        connect(box, &QSpinBox::valueChanged, this, [this, set](int v) {
            (m_sizes.*set)(v);
            showSizes();
        });
    };
    follow(udbWidth, &SaveImageProportions::setWidth);
    follow(udbHeight, &SaveImageProportions::setHeight);
    follow(udbPercent, &SaveImageProportions::setPercent);
    follow(udbQual, &SaveImageProportions::setQuality);
    connect(cmdSave, &QPushButton::clicked, this, &frmSave::cmdSave_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

void frmSave::showSizes()
{
    const QSignalBlocker w(udbWidth), h(udbHeight), p(udbPercent), q(udbQual);
    udbWidth->setRange(1, std::max(1, m_sizes.maxWidth()));
    udbHeight->setRange(1, std::max(1, m_sizes.maxHeight()));
    udbPercent->setRange(1, SaveImageProportions::MaxPercent);
    udbQual->setRange(0, 100);
    udbWidth->setValue(m_sizes.width());
    udbHeight->setValue(m_sizes.height());
    udbPercent->setValue(m_sizes.percent());
    udbQual->setValue(m_sizes.quality());
}

bool frmSave::Save(const QString &fileName, int width, int height, int percent, int quality)
{
    setWindowTitle(Lang(57));
    QFont f = font();
    SetLocaleFont(f);
    setFont(f);
    lblFile->setText(fileName);
    fraOptions->setTitle(Lang(50) + u':');
    lblWidth->setText(Lang(141) + u':');
    lblHeight->setText(Lang(142) + u':');
    lblPercent->setText(Lang(187) + u':');
    // Slot 18, which the English table leaves empty: the label reads ":" unless a
    // language file fills it. Translations rely on that slot, so it stays.
    lblQuality->setText(Lang(18) + u':');
    cmdCancel->setText(Lang(195));
    cmdSave->setText(Lang(196));

    m_sizes.open(width, height, percent, quality);
    showSizes();

    const bool jpg = SaveImageQualityEnabled(fileName);
    lblQuality->setEnabled(jpg);
    udbQual->setEnabled(lblQuality->isEnabled());
    return exec() == QDialog::Accepted;
}

void frmSave::cmdSave_Click()
{
    const int width = udbWidth->value();
    const int height = udbHeight->value();
    const int quality = udbQual->value();
    if (m_onSave)
        m_onSave(lblFile->text(), width, height, quality);
    accept();
}
