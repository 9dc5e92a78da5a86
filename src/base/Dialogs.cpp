#include "base/Dialogs.h"

#include <QFileInfo>
#include <QStringList>
#include <cstdio>

namespace {
StderrDialogs g_stderrDialogs;
Dialogs *g_dialogs = nullptr;

MsgResult safeDefault(MsgButtons buttons)
{
    switch (buttons) {
    case MsgButtons::Ok: return MsgResult::Ok;
    case MsgButtons::OkCancel: return MsgResult::Cancel;
    case MsgButtons::YesNo: return MsgResult::No;
    case MsgButtons::YesNoCancel: return MsgResult::Cancel;
    }
    return MsgResult::Cancel;
}
} // namespace

MsgResult StderrDialogs::message(const QString &text, const QString &title, MsgIcon, MsgButtons buttons)
{
    QString flat = text;
    flat.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    const QByteArray out = (title.isEmpty() ? flat : title + QStringLiteral(": ") + flat).toLocal8Bit();
    std::fprintf(stderr, "%s\n", out.constData());
    return safeDefault(buttons);
}

Dialogs &dialogs()
{
    return g_dialogs ? *g_dialogs : static_cast<Dialogs &>(g_stderrDialogs);
}

void setDialogs(Dialogs *d)
{
    g_dialogs = d;
}

QString fileTitle(const QString &path)
{
    return QFileInfo(path).fileName();
}

QStringList filterToQt(const QString &filter)
{
    const QStringList parts = filter.split(QLatin1Char('|'));
    QStringList out;
    for (int i = 0; i + 1 < parts.size(); i += 2) {
        QString label = parts[i];
        QString pattern = parts[i + 1];
        pattern.replace(QLatin1Char(';'), QLatin1Char(' '));
        // The label usually repeats the pattern already: "Layout file (*.lyt)".
        if (label.contains(QLatin1Char('(')))
            out << label.left(label.indexOf(QLatin1Char('('))).trimmed() + QStringLiteral(" (") + pattern + QLatin1Char(')');
        else
            out << label + QStringLiteral(" (") + pattern + QLatin1Char(')');
    }
    return out;
}
