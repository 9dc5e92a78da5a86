#include "app/AppFolder.h"

#include "app/XdgFileAssociation.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {
// Holds the version that last filled the user's folder.
const QString kStamp = u".shipped-version"_s;

// Copies into userFolder every file and folder of shippedData that it lacks, once per
// version: an upgrade brings new pictures and languages, while what the user changed or
// deleted since stays so. When something cannot be copied, the next start tries again.
bool FillUserFolder(const QString &shippedData, const QString &userFolder)
{
    QFile stamp(userFolder + u'/' + kStamp);
    if (stamp.open(QIODevice::ReadOnly) && stamp.readAll() == VARNO_VERSION)
        return true;
    stamp.close();

    bool complete = QDir().mkpath(userFolder);
    const QDir from(shippedData);
    QDirIterator it(shippedData, QDir::AllEntries | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QFileInfo source(it.next());
        const QString target = userFolder + u'/' + from.relativeFilePath(source.filePath());
        if (source.isDir()) {
            complete = QDir().mkpath(target) && complete;
        } else if (!QFileInfo::exists(target)) {
            // The copy belongs to the user and, like the shipped file (0644), is writable by them.
            complete = QFile::copy(source.filePath(), target) && complete;
        }
    }
    return complete && stamp.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
           stamp.write(VARNO_VERSION) == qint64(qstrlen(VARNO_VERSION)) && stamp.flush();
}
} // namespace

QString ApplicationFolder(const QString &exeFolder, const QString &installedBinFolder,
                          const QString &shippedData)
{
    if (installedBinFolder.isEmpty())
        return exeFolder;
    const QString exe = QFileInfo(exeFolder).canonicalFilePath();
    if (exe.isEmpty() || exe != QFileInfo(installedBinFolder).canonicalFilePath())
        return exeFolder;
    const QString user = XdgFileAssociation::dataHome() + u"/varno"_s;
    FillUserFolder(shippedData, user);
    return user;
}

QString ApplicationFolder(const QString &exeFolder)
{
#if defined(VARNO_INSTALLED_BIN) && defined(VARNO_SHIPPED_DATA)
    return ApplicationFolder(exeFolder, QStringLiteral(VARNO_INSTALLED_BIN),
                             QStringLiteral(VARNO_SHIPPED_DATA));
#else
    return exeFolder;
#endif
}
