#pragma once
// Every message box and file or folder dialog goes through this one interface, so
// that the model never needs a window: the editor installs a Qt implementation,
// varno-cli one that prints to stderr, and tests a scripted one that never blocks.

#include <QString>

enum class MsgIcon { None, Information, Question, Exclamation, Error };
enum class MsgButtons { Ok, OkCancel, YesNo, YesNoCancel };
enum class MsgResult { Ok, Cancel, Yes, No };

struct FileDialogRequest {
    QString title;
    // Filter in the "Name (*.ext)|*.ext|All files (*.*)|*.*" form; pairs of label and pattern.
    QString filter;
    int filterIndex = 1; // 1-based, as the filter lists them
    QString initialDir;
    QString fileName;    // proposed name
    QString defaultExt;  // without the dot
};

class Dialogs {
public:
    virtual ~Dialogs() = default;
    virtual MsgResult message(const QString &text, const QString &title, MsgIcon icon,
                              MsgButtons buttons = MsgButtons::Ok) = 0;
    // The chosen full path, or an empty string on cancel.
    virtual QString openFile(const FileDialogRequest &request) = 0;
    virtual QString saveFile(const FileDialogRequest &request) = 0;
    virtual QString browseFolder(const QString &title, const QString &initialDir) = 0;
};

// Prints every message to stderr and answers each question with its safe default:
// Ok, Cancel or No, and no file or folder.
class StderrDialogs : public Dialogs {
public:
    MsgResult message(const QString &text, const QString &title, MsgIcon icon, MsgButtons buttons) override;
    QString openFile(const FileDialogRequest &) override { return {}; }
    QString saveFile(const FileDialogRequest &) override { return {}; }
    QString browseFolder(const QString &, const QString &) override { return {}; }
};

// The process-wide instance; StderrDialogs until something else is installed.
Dialogs &dialogs();
// Installs d (not owned; nullptr restores the stderr fallback).
void setDialogs(Dialogs *d);

// The platform's file title: the name without its folder.
QString fileTitle(const QString &path);
// Splits a "Label|pattern|Label|pattern" filter into Qt's "Label (pattern)" list form.
QStringList filterToQt(const QString &filter);
