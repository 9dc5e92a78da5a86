#pragma once
// What every fuzz target shares: a Qt application object, a throw-away application
// folder with small backgrounds, dialogs that never block, and the checks that turn a
// broken promise into a crash the fuzzer keeps.

#include "base/Dialogs.h"

#include <QByteArray>
#include <QString>
#include <cstddef>
#include <cstdint>

namespace fuzz {

// Answers every box with its safe default and every save dialog with saveAnswer.
class QuietDialogs : public Dialogs {
public:
    MsgResult message(const QString &text, const QString &title, MsgIcon icon, MsgButtons buttons) override;
    QString openFile(const FileDialogRequest &) override { return {}; }
    QString saveFile(const FileDialogRequest &) override { return saveAnswer; }
    QString browseFolder(const QString &, const QString &) override { return {}; }

    QString saveAnswer;
    int shown = 0;
    QString lastText;
};

// Sets up the process once: QCoreApplication, an application folder in a temporary
// directory with objects/, backgrounds/, lang/ (English.lng), packs/ and layouts/,
// a 250 x 200 background used for every layout type, the catalogue and the English
// texts. Returns the dialogs the targets may script.
QuietDialogs &init();

// The application folder (with its trailing separator) and files in it.
QString app(const QString &relative = QString());

// Puts data in a file (replacing it); aborts when that is impossible, as the target
// could not test anything.
void write(const QString &path, const uint8_t *data, size_t size);
void write(const QString &path, const QByteArray &bytes);
QByteArray readAll(const QString &path);

// Forgets the logged errors and the log file, so a long run does not grow them.
void resetLog();

// Reports the broken promise on stderr and aborts, which the fuzzer records as a crash.
[[noreturn]] void fail(const char *what, const QString &detail = QString());
inline void check(bool ok, const char *what, const QString &detail = QString())
{
    if (!ok)
        fail(what, detail);
}

} // namespace fuzz
