#include "base/ErrorLog.h"

#include "base/Settings.h"
#include "base/Dialogs.h"

#include <QDateTime>
#include <QFile>
#include <QLocale>
#include <QStringList>

namespace {
QStringList &loggedErrors()
{
    static QStringList list;
    return list;
}
} // namespace

QString ErrorBoxText(const QString &message)
{
    return QStringList{QStringLiteral("Unexpected error!?"),
                       QString(),
                       message,
                       QString(),
                       QStringLiteral("If it doesn't exist, Varno.log has been created with"),
                       QStringLiteral("this error message appended to it. Please report this to Quillan via"),
                       QStringLiteral("the LFS forum.")}
        .join(QStringLiteral("\r\n"));
}

void LogError(const QString &message, int show)
{
    loggedErrors().append(message);
    QFile log(AppPath() + QStringLiteral("Varno.log"));
    if (!log.open(QIODevice::WriteOnly | QIODevice::Append))
        rt::raise(log.exists() ? rt::PermissionDenied : rt::PathNotFound);
    const QString stamp = QLocale::system().toString(QDateTime::currentDateTime(), QLocale::ShortFormat);
    const QByteArray line = (QLatin1Char('[') + stamp + QStringLiteral("] ") + message).toUtf8() + "\r\n";
    const bool written = log.write(line) == line.size();
    log.close();
    if (show)
        dialogs().message(ErrorBoxText(message), QStringLiteral("Sorry :("), MsgIcon::Error);
    if (!written)
        rt::raise(rt::DiskFull);
}

const QStringList &LoggedErrors()
{
    return loggedErrors();
}

void ClearLoggedErrors()
{
    loggedErrors().clear();
}

void ReportError(const rt::Error &error, const QString &where, bool show)
{
    const QString message = error.message() + QStringLiteral(" in ") + where;
    try {
        LogError(message, show ? 1 : 0);
    } catch (const rt::Error &logFailure) {
        // The log itself could not be written (read-only folder, full disk). The user
        // must still hear about the original error, and the program must go on.
        if (show)
            dialogs().message(ErrorBoxText(message) + QStringLiteral("\r\n\r\n(Varno.log could not be written: ")
                                  + logFailure.message() + QLatin1Char(')'),
                              QStringLiteral("Sorry :("), MsgIcon::Error);
    }
}
