#pragma once
// The about box: name, version, licence and a short sheet of the keys and mouse tools.

#include <QDialog>

class frmAbout : public QDialog {
    Q_OBJECT
public:
    explicit frmAbout(QWidget *parent = nullptr);

    // The key and mouse sheet as rich text (language texts where the table has them).
    static QString CheatSheet();
};
