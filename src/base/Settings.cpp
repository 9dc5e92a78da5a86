#include "base/Settings.h"

#include <QDir>

namespace {
QString &appPathStorage()
{
    static QString path;
    return path;
}
} // namespace

const QString &AppPath()
{
    return appPathStorage();
}

void SetAppPath(const QString &folder)
{
    QString path = QDir::toNativeSeparators(folder);
    // A folder at a drive's root already ends in the separator; never add a second.
    if (!path.endsWith(QDir::separator()))
        path += QDir::separator();
    appPathStorage() = path;
}

Options Options::defaults()
{
    const QString app = AppPath();
    const QString sep = QDir::separator();
    Options o;
    o.Language = app + QStringLiteral("lang") + sep + QStringLiteral("English.lng");
    o.AU1 = app + QStringLiteral("backgrounds") + sep + QStringLiteral("AU1.png");
    o.AU2 = app + QStringLiteral("backgrounds") + sep + QStringLiteral("AU2.png");
    o.AU34 = app + QStringLiteral("backgrounds") + sep + QStringLiteral("AU34.png");
    o.BL3 = app + QStringLiteral("backgrounds") + sep + QStringLiteral("BL3.png");
    o.OpenFolder = app + QStringLiteral("layouts");
    o.RememberOpenFolder = true;
    o.SaveFolder = app + QStringLiteral("layouts");
    o.RememberSaveFolder = true;
    o.SavePercent = 100;
    o.SaveQuality = 90;
    o.SaveType = QStringLiteral("jpg");
    return o;
}

Options &options()
{
    static Options o;
    return o;
}

QString ConfigPath()
{
    return AppPath() + QStringLiteral("Varno.cfg");
}
