#pragma once
// Shared helpers for the tests: a dialog stand-in that never blocks, a throw-away
// application folder, and a picture comparison that holds on any processor.

#include "base/Dialogs.h"

#include <QImage>
#include <QList>
#include <QStringList>
#include <QTemporaryDir>

// Records every message and dialog request and answers from scripted queues; an empty
// queue answers with the safe default (Ok, Cancel, No, no file).
class ScriptedDialogs : public Dialogs {
public:
    struct Shown {
        QString text;
        QString title;
        MsgIcon icon;
        MsgButtons buttons;
    };

    ScriptedDialogs();  // installs itself
    ~ScriptedDialogs() override; // restores the previous dialogs

    MsgResult message(const QString &text, const QString &title, MsgIcon icon, MsgButtons buttons) override;
    QString openFile(const FileDialogRequest &request) override;
    QString saveFile(const FileDialogRequest &request) override;
    QString browseFolder(const QString &title, const QString &initialDir) override;

    QList<Shown> messages;
    QList<FileDialogRequest> openRequests;
    QList<FileDialogRequest> saveRequests;
    QStringList folderRequests;

    QList<MsgResult> answers;
    QStringList openAnswers;
    QStringList saveAnswers;
    QStringList folderAnswers;

private:
    Dialogs *m_previous = nullptr;
};

// A fresh application folder in a temporary directory. The program's data folders
// (objects, backgrounds, lang) are copied in from the build's application folder when
// asked, and AppPath() points at it while the object lives.
class TempAppFolder {
public:
    explicit TempAppFolder(bool withData = true);
    ~TempAppFolder();
    QString path() const;             // with the trailing separator
    QString file(const QString &relative) const;
    bool isValid() const { return m_dir.isValid(); }

private:
    QTemporaryDir m_dir;
    QString m_previousAppPath;
};

// The build's application folder (where the test executables and the data live).
QString BuildAppFolder();
// Copies the build's varno-cli into app, so that it runs as a user runs it, with its own
// Varno.cfg and Varno.log; returns the copy's path, empty when the copy failed.
QString CopyCli(const TempAppFolder &app);
// Writes bytes to a file, creating folders; returns the path.
QString WriteFile(const QString &path, const QByteArray &bytes);
QByteArray ReadAll(const QString &path);

// Why two pictures differ, or an empty string when they show the same. Qt picks its
// drawing and pixel-conversion code by processor, so anti-aliased edges and smooth
// scaling may round a step apart from one machine to the next. Pixels are compared
// premultiplied, as they are seen: a nearly clear edge pixel whose stored colour rounds
// differently is no change. Every channel may be off by 2 / 255 on at most 2 % of the
// pixels (at least 4, for the small icons); a different size, a moved edge, a new
// colour or a shade changed all over are differences.
QString PictureDifference(const QImage &expected, const QImage &actual);
