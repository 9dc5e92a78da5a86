#include "app/ui/frmOptions.h"

#include "base/ConfigFile.h"
#include "base/Language.h"
#include "base/Settings.h"
#include "base/Dialogs.h"

#include <QComboBox>
#include <QDir>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

template <typename W> W *named(W *w, const QString &name)
{
    w->setObjectName(name);
    return w;
}

QString sep()
{
    return QDir::separator();
}

const char *const kBackgroundPatterns[4] = {"AU1*.*", "AU2*.*", "AU34*.*", "BL3*.*"};

} // namespace

frmOptions::frmOptions(std::function<QStringList()> recentItems, QWidget *parent,
                       std::unique_ptr<FileAssociation> association)
    : QDialog(parent), m_recentItems(std::move(recentItems)), m_association(std::move(association))
{
    setObjectName(u"frmOptions"_s);
    lblLanguage = named(new QLabel(this), u"lblLanguage"_s);
    cboLanguage = named(new QComboBox(this), u"cboLanguage"_s);
    cboLanguage->setEditable(true);

    framBG = named(new QGroupBox(this), u"framBG"_s);
    auto *bgLayout = new QVBoxLayout(framBG);
    for (int i = 0; i < 4; ++i) {
        cboBG[i] = named(new QComboBox(framBG), u"cboBG%1"_s.arg(i));
        cboBG[i]->setEditable(true);
        cboBG[i]->setMinimumContentsLength(40);
        bgLayout->addWidget(cboBG[i]);
        connect(cboBG[i], &QComboBox::activated, this, [this, i] { cboBG_Click(i); });
    }

    auto folderFrame = [this](QGroupBox *&frame, const QString &name, QRadioButton **opt, const QString &optName,
                              QLineEdit *&text, const QString &textName, int browse) {
        frame = named(new QGroupBox(this), name);
        auto *grid = new QGridLayout(frame);
        for (int i = 0; i < 2; ++i) {
            opt[i] = named(new QRadioButton(frame), optName + QString::number(i));
            grid->addWidget(opt[i], i, 0, 1, 2);
            connect(opt[i], &QRadioButton::toggled, this, &frmOptions::optFolder_Click);
        }
        text = named(new QLineEdit(frame), textName);
        cmdBrowse[browse] = named(new QPushButton(u"..."_s, frame), u"cmdBrowse%1"_s.arg(browse));
        grid->addWidget(text, 2, 0);
        grid->addWidget(cmdBrowse[browse], 2, 1);
        connect(cmdBrowse[browse], &QPushButton::clicked, this, [this, browse] { cmdBrowse_Click(browse); });
    };
    folderFrame(framOpen, u"framOpen"_s, optOpenFolder, u"optOpenFolder"_s, txtOpenFolder, u"txtOpenFolder"_s, 0);
    folderFrame(framSave, u"framSave"_s, optSaveFolder, u"optSaveFolder"_s, txtSaveFolder, u"txtSaveFolder"_s, 1);

    lblPercent = named(new QLabel(this), u"lblPercent"_s);
    udbPercent = named(new QSpinBox(this), u"udbPercent"_s);
    udbPercent->setRange(1, 1000);
    lblQuality = named(new QLabel(this), u"lblQuality"_s);
    udbQuality = named(new QSpinBox(this), u"udbQuality"_s);
    udbQuality->setRange(0, 100);
    lblType = named(new QLabel(this), u"lblType"_s);
    cboSaveType = named(new QComboBox(this), u"cboSaveType"_s);
    cboSaveType->setEditable(true);

    cmdAssociation = named(new QPushButton(this), u"cmdAssociation"_s);
    cmdCancel = named(new QPushButton(this), u"cmdCancel"_s);
    cmdSave = named(new QPushButton(this), u"cmdSave"_s);
    cmdSave->setDefault(true);

    auto *image = new QGridLayout;
    image->addWidget(lblPercent, 0, 0);
    image->addWidget(udbPercent, 0, 1);
    image->addWidget(lblQuality, 1, 0);
    image->addWidget(udbQuality, 1, 1);
    image->addWidget(lblType, 2, 0);
    image->addWidget(cboSaveType, 2, 1);
    auto *language = new QHBoxLayout;
    language->addWidget(lblLanguage);
    language->addWidget(cboLanguage, 1);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(cmdAssociation);
    buttons->addStretch(1);
    buttons->addWidget(cmdSave);
    buttons->addWidget(cmdCancel);
    auto *main = new QVBoxLayout(this);
    main->addLayout(language);
    main->addWidget(framBG);
    main->addWidget(framOpen);
    main->addWidget(framSave);
    main->addLayout(image);
    main->addLayout(buttons);

    connect(cmdAssociation, &QPushButton::clicked, this, &frmOptions::cmdAssociation_Click);
    connect(cmdSave, &QPushButton::clicked, this, &frmOptions::cmdSave_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);

    Form_Load();
}

frmOptions::~frmOptions() = default;

void frmOptions::Form_Load()
{
    if (parentWidget())
        setWindowIcon(parentWidget()->window()->windowIcon());
    setWindowTitle(Lang(50));
    lblLanguage->setText(Lang(180));
    framBG->setTitle(Lang(181));
    framOpen->setTitle(Lang(182));
    framSave->setTitle(Lang(183));
    optOpenFolder[0]->setText(Lang(184));
    optSaveFolder[0]->setText(Lang(185));
    optOpenFolder[1]->setText(Lang(186));
    optSaveFolder[1]->setText(Lang(186));
    lblPercent->setText(Lang(187));
    lblQuality->setText(Lang(188));
    lblType->setText(Lang(189));
    cmdCancel->setText(Lang(195));
    cmdSave->setText(Lang(196));
    QFont f = font();
    SetLocaleFont(f);
    setFont(f);

    const Options &o = options();
    // The languages in the order the file system lists them.
    const QStringList languages = QDir(AppPath() + u"lang"_s, u"*.lng"_s, QDir::Unsorted, QDir::Files).entryList();
    for (const QString &name : languages)
        cboLanguage->addItem(name.left(name.size() - 4));
    const QString current = fileTitle(o.Language);
    cboLanguage->setEditText(current.left(std::max<qsizetype>(0, current.size() - 4)));

    const QString backgrounds = AppPath() + u"backgrounds"_s;
    const QString values[4] = {o.AU1, o.AU2, o.AU34, o.BL3};
    for (int i = 0; i < 4; ++i) {
        const QStringList files =
            QDir(backgrounds, QLatin1String(kBackgroundPatterns[i]), QDir::Unsorted, QDir::Files).entryList();
        for (const QString &name : files)
            cboBG[i]->addItem(backgrounds + sep() + name);
        cboBG[i]->addItem(Lang(105));
        cboBG[i]->setEditText(values[i]);
    }

    optOpenFolder[0]->setChecked(o.RememberOpenFolder);
    optOpenFolder[1]->setChecked(!o.RememberOpenFolder);
    txtOpenFolder->setText(o.OpenFolder);
    optSaveFolder[0]->setChecked(o.RememberSaveFolder);
    optSaveFolder[1]->setChecked(!o.RememberSaveFolder);
    txtSaveFolder->setText(o.SaveFolder);
    optFolder_Click();

    udbPercent->setValue(o.SavePercent);
    udbQuality->setValue(o.SaveQuality);
    cboSaveType->addItems({u"jpg"_s, u"png"_s, u"gif"_s, u"bmp"_s});
    cboSaveType->setEditText(o.SaveType);

    UpdateAssociationButton();
}

void frmOptions::cboBG_Click(int index)
{
    QComboBox *combo = cboBG[index];
    if (combo->currentText() != Lang(105))
        return;
    FileDialogRequest request;
    request.title = Lang(106);
    request.filter = Lang(102) + u" (*.*)|*.*"_s;
    request.initialDir = AppPath();
    const QString chosen = dialogs().openFile(request);
    // Never leave "Browse for more..." showing as if it were a picture.
    combo->setEditText(chosen.isEmpty() ? combo->itemText(0) : chosen);
}

void frmOptions::optFolder_Click()
{
    cmdBrowse[0]->setEnabled(optOpenFolder[1]->isChecked());
    cmdBrowse[1]->setEnabled(optSaveFolder[1]->isChecked());
}

void frmOptions::cmdBrowse_Click(int index)
{
    QLineEdit *text = index == 0 ? txtOpenFolder : txtSaveFolder;
    const QString chosen = dialogs().browseFolder(Lang(107), text->text());
    if (!chosen.isEmpty()) // a cancelled browser leaves the folder as it was
        text->setText(chosen);
}

void frmOptions::UpdateAssociationButton()
{
    switch (m_association ? m_association->state() : AssociationState::NotAssociated) {
    case AssociationState::Associated:
        cmdAssociation->setText(Lang(192));
        m_associationTag = u"delete"_s;
        break;
    case AssociationState::OtherProgram:
        cmdAssociation->setText(Lang(191));
        m_associationTag = u"regedit"_s;
        break;
    case AssociationState::NotAssociated:
        cmdAssociation->setText(Lang(190));
        m_associationTag = u"delete->create"_s;
        break;
    }
    cmdAssociation->setProperty("tag", m_associationTag);
}

void frmOptions::cmdAssociation_Click()
{
    if (m_association) {
        if (m_associationTag.startsWith(u"delete"_s))
            m_association->remove();
        if (m_associationTag == u"delete->create"_s)
            m_association->create();
        if (m_associationTag == u"regedit"_s)
            m_association->resolveByHand();
    }
    UpdateAssociationButton();
}

void frmOptions::cmdSave_Click()
{
    Options &o = options();
    o.Language = AppPath() + u"lang"_s + sep() + cboLanguage->currentText() + u".lng"_s;
    o.AU1 = cboBG[0]->currentText();
    o.AU2 = cboBG[1]->currentText();
    o.AU34 = cboBG[2]->currentText();
    o.BL3 = cboBG[3]->currentText();
    o.OpenFolder = txtOpenFolder->text();
    o.RememberOpenFolder = optOpenFolder[0]->isChecked();
    o.SaveFolder = txtSaveFolder->text();
    o.RememberSaveFolder = optSaveFolder[0]->isChecked();
    o.SavePercent = udbPercent->value();
    o.SaveQuality = udbQuality->value();
    o.SaveType = cboSaveType->currentText();
    SaveOptions(m_recentItems ? m_recentItems() : QStringList());
    LoadLanguage();
    emit optionsSaved();
    accept();
}

bool ShowOptions(QWidget *parent, std::function<QStringList()> recentItems)
{
    frmOptions dialog(std::move(recentItems), parent);
    return dialog.exec() == QDialog::Accepted;
}

frmOptions *OpenOptions(QWidget *parent, std::function<QStringList()> recentItems)
{
    auto *dialog = new frmOptions(std::move(recentItems), parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->show();
    return dialog;
}
