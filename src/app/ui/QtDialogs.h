#pragma once
// The editor's dialogs: Qt message boxes and file and folder choosers.

#include "base/Dialogs.h"

class QWidget;

class QtDialogs : public Dialogs {
public:
    explicit QtDialogs(QWidget *parentWindow = nullptr) : m_parent(parentWindow) {}
    void setParentWindow(QWidget *w) { m_parent = w; }

    MsgResult message(const QString &text, const QString &title, MsgIcon icon, MsgButtons buttons) override;
    QString openFile(const FileDialogRequest &request) override;
    QString saveFile(const FileDialogRequest &request) override;
    QString browseFolder(const QString &title, const QString &initialDir) override;

private:
    QWidget *m_parent;
};
