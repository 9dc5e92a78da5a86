#pragma once
// The error log (Varno.log beside the program) and the handler every procedure uses.

#include "base/Runtime.h"

#include <QString>
#include <new>

// Appends "[date time] message" to Varno.log and, when show is non-zero, shows the
// "Sorry :(" box. Throws rt::Error when the log cannot be written.
void LogError(const QString &message, int show);

// The text of the "Sorry :(" box for a message.
QString ErrorBoxText(const QString &message);

// Every logged error message of this process, without the date, in order. varno-cli
// reports them; tests read them.
const QStringList &LoggedErrors();
void ClearLoggedErrors();

// Logs an error as "N: text in where" and shows the box when show is set.
void ReportError(const rt::Error &error, const QString &where, bool show = true);

// Runs fn under an error handler: a run-time error is logged and shown as
// "N: text in where" and guarded returns false, leaving whatever fn had reached.
template <typename F> bool guarded(const QString &where, F &&fn, bool show = true)
{
    try {
        fn();
        return true;
    } catch (const rt::Error &e) {
        ReportError(e, where, show);
    } catch (const std::bad_alloc &) {
        ReportError(rt::Error(rt::OutOfMemory), where, show);
    }
    return false;
}
