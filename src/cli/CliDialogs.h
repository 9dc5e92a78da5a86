#pragma once
// varno-cli never shows a window: message boxes become lines on stderr, and a save
// dialog is answered with the name given on the command line.

#include "base/Dialogs.h"

class CliDialogs : public StderrDialogs {
public:
    static CliDialogs &instance();
    MsgResult message(const QString &text, const QString &title, MsgIcon icon, MsgButtons buttons) override;
    QString saveFile(const FileDialogRequest &request) override;
    // The path the next save dialogs answer with; empty answers Cancel.
    void answerSaveWith(const QString &path) { m_savePath = path; }

private:
    QString m_savePath;
};
