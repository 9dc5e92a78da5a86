#pragma once
// The options dialog: language, the default background of each layout type, how the
// open and save folders are chosen, the defaults of Save to image, and the .lyt file
// association. Save writes Varno.cfg, reloads the language and says so through
// optionsSaved(), so that the main window can refresh its captions and palette.

#include "app/FileAssociation.h"

#include <QDialog>
#include <QStringList>
#include <functional>
#include <memory>

class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QSpinBox;

class frmOptions : public QDialog {
    Q_OBJECT
public:
    // recentItems gives the main window's recent-file items for SaveOptions. The
    // association is the platform's unless one is given (tests give a fake).
    explicit frmOptions(std::function<QStringList()> recentItems, QWidget *parent = nullptr,
                        std::unique_ptr<FileAssociation> association = NativeFileAssociation());
    ~frmOptions() override;

    // Reads the association and sets the button's caption and pending action.
    void UpdateAssociationButton();
    // The association button's pending action: "delete", "delete->create" or "regedit".
    QString associationTag() const { return m_associationTag; }

signals:
    void optionsSaved();

private:
    void Form_Load();
    void cboBG_Click(int index);
    void optFolder_Click();
    void cmdBrowse_Click(int index);
    void cmdAssociation_Click();
    void cmdSave_Click();

    std::function<QStringList()> m_recentItems;
    std::unique_ptr<FileAssociation> m_association;
    QString m_associationTag;

    QLabel *lblLanguage;
    QComboBox *cboLanguage;
    QGroupBox *framBG;
    QComboBox *cboBG[4];
    QGroupBox *framOpen, *framSave;
    QRadioButton *optOpenFolder[2], *optSaveFolder[2];
    QLineEdit *txtOpenFolder, *txtSaveFolder;
    QPushButton *cmdBrowse[2];
    QLabel *lblPercent, *lblQuality, *lblType;
    QSpinBox *udbPercent, *udbQuality;
    QComboBox *cboSaveType;
    QPushButton *cmdAssociation, *cmdCancel, *cmdSave;
};

// The Options command: the dialog, modal. True when the user saved.
bool ShowOptions(QWidget *parent, std::function<QStringList()> recentItems);
// The same dialog without blocking (the first run shows it so, after the main window);
// it deletes itself when closed. Connect to its optionsSaved() to refresh.
frmOptions *OpenOptions(QWidget *parent, std::function<QStringList()> recentItems);
