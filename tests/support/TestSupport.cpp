#include "support/TestSupport.h"

#include "base/Settings.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {
Dialogs *currentDialogs()
{
    return &dialogs();
}

void copyTree(const QString &from, const QString &to)
{
    QDir().mkpath(to);
    QDirIterator it(from, QDir::Files | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString src = it.next();
        const QString rel = QDir(from).relativeFilePath(src);
        const QString dst = to + QLatin1Char('/') + rel;
        QDir().mkpath(QFileInfo(dst).absolutePath());
        QFile::copy(src, dst);
    }
}
} // namespace

ScriptedDialogs::ScriptedDialogs() : m_previous(currentDialogs())
{
    setDialogs(this);
}

ScriptedDialogs::~ScriptedDialogs()
{
    setDialogs(m_previous == this ? nullptr : m_previous);
}

MsgResult ScriptedDialogs::message(const QString &text, const QString &title, MsgIcon icon, MsgButtons buttons)
{
    messages.append({text, title, icon, buttons});
    if (!answers.isEmpty())
        return answers.takeFirst();
    switch (buttons) {
    case MsgButtons::Ok: return MsgResult::Ok;
    case MsgButtons::YesNo: return MsgResult::No;
    default: return MsgResult::Cancel;
    }
}

QString ScriptedDialogs::openFile(const FileDialogRequest &request)
{
    openRequests.append(request);
    return openAnswers.isEmpty() ? QString() : openAnswers.takeFirst();
}

QString ScriptedDialogs::saveFile(const FileDialogRequest &request)
{
    saveRequests.append(request);
    return saveAnswers.isEmpty() ? QString() : saveAnswers.takeFirst();
}

QString ScriptedDialogs::browseFolder(const QString &title, const QString &)
{
    folderRequests.append(title);
    return folderAnswers.isEmpty() ? QString() : folderAnswers.takeFirst();
}

QString BuildAppFolder()
{
    return QCoreApplication::applicationDirPath() + QLatin1Char('/');
}

QString CopyCli(const TempAppFolder &app)
{
#ifdef Q_OS_WIN
    const QString name = QStringLiteral("varno-cli.exe");
    // The copy finds Qt's DLLs in the build's folder.
    qputenv("PATH", QDir::toNativeSeparators(BuildAppFolder()).toLocal8Bit() + ';' + qgetenv("PATH"));
#else
    const QString name = QStringLiteral("varno-cli");
#endif
    const QString copy = app.file(name);
    if (!QFile::copy(BuildAppFolder() + name, copy))
        return QString();
    QFile::setPermissions(copy, QFile::permissions(copy) | QFile::ExeOwner);
    return copy;
}

TempAppFolder::TempAppFolder(bool withData) : m_previousAppPath(AppPath())
{
    if (withData) {
        for (const char *d : {"objects", "backgrounds", "lang"})
            copyTree(BuildAppFolder() + QLatin1String(d), m_dir.path() + QLatin1Char('/') + QLatin1String(d));
    }
    for (const char *d : {"objects", "backgrounds", "lang", "packs", "layouts"})
        QDir(m_dir.path()).mkpath(QLatin1String(d));
    SetAppPath(QDir::toNativeSeparators(m_dir.path()));
}

TempAppFolder::~TempAppFolder()
{
    SetAppPath(m_previousAppPath);
}

QString TempAppFolder::path() const
{
    return AppPath();
}

QString TempAppFolder::file(const QString &relative) const
{
    return AppPath() + relative;
}

QString WriteFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    if (f.open(QIODevice::WriteOnly | QIODevice::Truncate))
        f.write(bytes);
    return path;
}

QByteArray ReadAll(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

QString PictureDifference(const QImage &expected, const QImage &actual)
{
    if (expected.size() != actual.size())
        return QStringLiteral("%1 x %2 pixels, expected %3 x %4")
            .arg(actual.width()).arg(actual.height()).arg(expected.width()).arg(expected.height());
    const QImage e = expected.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const QImage a = actual.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    qsizetype differing = 0;
    for (int y = 0; y < e.height(); ++y)
        for (int x = 0; x < e.width(); ++x) {
            const QRgb p = e.pixel(x, y), q = a.pixel(x, y);
            if (p == q)
                continue;
            ++differing;
            if (std::max({qAbs(qRed(p) - qRed(q)), qAbs(qGreen(p) - qGreen(q)), qAbs(qBlue(p) - qBlue(q)),
                          qAbs(qAlpha(p) - qAlpha(q))}) > 2)
                return QStringLiteral("pixel %1,%2 is #%3, expected #%4")
                    .arg(x).arg(y).arg(q, 8, 16, QLatin1Char('0')).arg(p, 8, 16, QLatin1Char('0'));
        }
    const qsizetype allowed = std::max<qsizetype>(4, qsizetype(e.width()) * e.height() / 50);
    if (differing > allowed)
        return QStringLiteral("%1 pixels are slightly off, more than the %2 that rounding explains")
            .arg(differing).arg(allowed);
    return QString();
}
