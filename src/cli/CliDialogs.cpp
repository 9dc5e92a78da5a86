#include "cli/CliDialogs.h"

#include <QStringList>
#include <cstdio>

CliDialogs &CliDialogs::instance()
{
    static CliDialogs d;
    return d;
}

MsgResult CliDialogs::message(const QString &text, const QString &title, MsgIcon icon, MsgButtons buttons)
{
    QStringList lines = text.split(QStringLiteral("\r\n"));
    // The error box carries its message on the third line; the rest is for the editor.
    QString shown = title == QStringLiteral("Sorry :(") && lines.size() > 2
                        ? QStringLiteral("error: ") + lines[2]
                        : lines.join(QLatin1Char(' ')).simplified();
    if (title != QStringLiteral("Sorry :(") && !title.isEmpty())
        shown = title + QStringLiteral(": ") + shown;
    std::fprintf(stderr, "varno-cli: %s\n", shown.toLocal8Bit().constData());
    return StderrDialogs::message(QString(), QString(), icon, buttons) == MsgResult::Ok ? MsgResult::Ok
                                                                                       : MsgResult::Cancel;
}

QString CliDialogs::saveFile(const FileDialogRequest &)
{
    return m_savePath;
}
