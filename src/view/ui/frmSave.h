#pragma once
// The size dialog of "Save to image": width, height and percent that follow each other,
// and the JPEG quality. Its Save button hands the chosen size to the save callback and
// closes the dialog; it never writes the options back.

#include "view/SaveImageRules.h"

#include <QDialog>
#include <functional>

class QGroupBox;
class QLabel;
class QPushButton;
class QSpinBox;

class frmSave : public QDialog {
    Q_OBJECT
public:
    using SaveCallback = std::function<void(const QString &fileName, int width, int height, int quality)>;

    explicit frmSave(QWidget *parent = nullptr);

    // Called by Save with the path and the boxes' values; the dialog closes afterwards.
    void setSaveCallback(SaveCallback fn) { m_onSave = std::move(fn); }

    // Fills the dialog for the path and the base size, with the stored percent and
    // quality, and shows it modally. True when Save was pressed.
    bool Save(const QString &fileName, int width, int height, int percent, int quality);

    const SaveImageProportions &proportions() const { return m_sizes; }

private:
    void showSizes();
    void cmdSave_Click();

    SaveImageProportions m_sizes;
    SaveCallback m_onSave;

    QLabel *lblFile;
    QGroupBox *fraOptions;
    QLabel *lblWidth, *lblHeight, *lblPercent, *lblQuality;
    QSpinBox *udbWidth, *udbHeight, *udbPercent, *udbQual;
    QPushButton *cmdSave, *cmdCancel;
};
