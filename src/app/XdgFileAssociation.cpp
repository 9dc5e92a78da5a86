#include "app/XdgFileAssociation.h"

#include "base/Language.h"
#include "base/Dialogs.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSaveFile>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace {

const QString kDefaults = u"[Default Applications]"_s;
const QString kAdded = u"[Added Associations]"_s;

QString envFolder(const char *name, const QString &fallback)
{
    const QString v = qEnvironmentVariable(name);
    // Relative paths are not valid here and count as unset.
    return !v.isEmpty() && QDir::isAbsolutePath(v) ? QDir::cleanPath(v) : fallback;
}

QStringList envFolders(const char *name, const QStringList &fallback)
{
    QStringList out;
    for (const QString &p : qEnvironmentVariable(name).split(u':', Qt::SkipEmptyParts))
        if (QDir::isAbsolutePath(p))
            out << QDir::cleanPath(p);
    return out.isEmpty() ? fallback : out;
}

QStringList readLines(const QString &path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return {};
    QStringList lines = QString::fromUtf8(f.readAll()).split(u'\n');
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

bool writeLines(const QString &path, const QStringList &lines)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QSaveFile f(path);
    if (!f.open(QIODevice::WriteOnly))
        return false;
    const QByteArray bytes = (lines.join(u'\n') + u'\n').toUtf8();
    return f.write(bytes) == bytes.size() && f.commit();
}

bool writeText(const QString &path, const QString &text)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QSaveFile f(path);
    if (!f.open(QIODevice::WriteOnly))
        return false;
    const QByteArray bytes = text.toUtf8();
    return f.write(bytes) == bytes.size() && f.commit();
}

bool isGroup(const QString &line)
{
    return line.trimmed().startsWith(u'[');
}

// The value of key in a group of a key file; a null string when it is not there.
QString keyValue(const QStringList &lines, const QString &group, const QString &key)
{
    bool inGroup = false;
    for (const QString &line : lines) {
        if (isGroup(line)) {
            inGroup = line.trimmed() == group;
            continue;
        }
        const qsizetype eq = line.indexOf(u'=');
        if (inGroup && eq > 0 && line.left(eq).trimmed() == key)
            return line.mid(eq + 1).trimmed();
    }
    return QString();
}

// Sets (or, with an empty value, removes) key in group, keeping every other line.
QStringList withKey(QStringList lines, const QString &group, const QString &key, const QString &value)
{
    qsizetype groupAt = -1, end = lines.size();
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (isGroup(lines[i])) {
            if (groupAt >= 0) {
                end = i;
                break;
            }
            if (lines[i].trimmed() == group)
                groupAt = i;
            continue;
        }
        const qsizetype eq = lines[i].indexOf(u'=');
        if (groupAt >= 0 && eq > 0 && lines[i].left(eq).trimmed() == key) {
            if (value.isEmpty())
                lines.removeAt(i);
            else
                lines[i] = key + u'=' + value;
            return lines;
        }
    }
    if (value.isEmpty())
        return lines;
    if (groupAt < 0) {
        if (!lines.isEmpty() && !lines.last().trimmed().isEmpty())
            lines << QString();
        lines << group << key + u'=' + value;
        return lines;
    }
    // After the group's last entry, before any blank lines that close it.
    while (end > groupAt + 1 && lines[end - 1].trimmed().isEmpty())
        --end;
    lines.insert(end, key + u'=' + value);
    return lines;
}

QStringList entries(const QString &value)
{
    return value.split(u';', Qt::SkipEmptyParts);
}

QString joined(const QStringList &ids)
{
    return ids.isEmpty() ? QString() : ids.join(u';') + u';';
}

QString xmlEscaped(const QString &s)
{
    return s.toHtmlEscaped();
}

} // namespace

XdgFileAssociation::XdgFileAssociation(QString executable, bool updateCaches)
    : m_executable(std::move(executable)), m_updateCaches(updateCaches)
{
}

QString XdgFileAssociation::dataHome()
{
    return envFolder("XDG_DATA_HOME", QDir::homePath() + u"/.local/share"_s);
}

QString XdgFileAssociation::configHome()
{
    return envFolder("XDG_CONFIG_HOME", QDir::homePath() + u"/.config"_s);
}

QStringList XdgFileAssociation::dataDirs()
{
    return envFolders("XDG_DATA_DIRS", {u"/usr/local/share"_s, u"/usr/share"_s});
}

QStringList XdgFileAssociation::configDirs()
{
    return envFolders("XDG_CONFIG_DIRS", {u"/etc/xdg"_s});
}

QString XdgFileAssociation::mimePackagePath() const
{
    return dataHome() + u"/mime/packages/varno-lyt.xml"_s;
}

QString XdgFileAssociation::desktopEntryPath() const
{
    return dataHome() + u"/applications/"_s + QLatin1String(DesktopId);
}

QString XdgFileAssociation::userMimeAppsPath() const
{
    return configHome() + u"/mimeapps.list"_s;
}

QString XdgFileAssociation::execLine() const
{
    // Quoted as a desktop entry argument, then escaped as a key file string.
    QString quoted;
    for (const QChar c : m_executable) {
        if (c == u'"' || c == u'`' || c == u'$' || c == u'\\')
            quoted += u'\\';
        quoted += c;
    }
    quoted.replace(u'\\', u"\\\\"_s);
    quoted.replace(u'%', u"%%"_s);
    return u'"' + quoted + u"\" %f"_s;
}

XdgFileAssociation::Holder XdgFileAssociation::holder() const
{
    // Desktop-specific lists come first, then the general one, user before system.
    QStringList desktops;
    for (const QString &d : qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':', Qt::SkipEmptyParts))
        desktops << d.toLower();
    QStringList lists;
    for (const QString &folder : QStringList{configHome()} + configDirs()) {
        for (const QString &d : desktops)
            lists << folder + u'/' + d + u"-mimeapps.list"_s;
        lists << folder + u"/mimeapps.list"_s;
    }
    for (const QString &folder : QStringList{dataHome()} + dataDirs())
        lists << folder + u"/applications/mimeapps.list"_s;
    const QString type = QLatin1String(MimeType);
    for (const QString &list : lists) {
        const QStringList ids = entries(keyValue(readLines(list), kDefaults, type));
        if (!ids.isEmpty())
            return {ids.first(), list};
    }
    return {};
}

AssociationState XdgFileAssociation::state() const
{
    const Holder h = holder();
    if (h.desktopId.isEmpty())
        return AssociationState::NotAssociated;
    if (h.desktopId != QLatin1String(DesktopId))
        return AssociationState::OtherProgram;
    // Ours by name: it must be the user's entry and run this very executable, exactly.
    for (const QString &folder : QStringList{dataHome()} + dataDirs()) {
        const QString entry = folder + u"/applications/"_s + QLatin1String(DesktopId);
        if (!QFileInfo::exists(entry))
            continue;
        const bool ours = entry == desktopEntryPath()
                          && keyValue(readLines(entry), u"[Desktop Entry]"_s, u"Exec"_s) == execLine();
        return ours ? AssociationState::Associated : AssociationState::OtherProgram;
    }
    // The default names an entry that is gone: nothing opens the files.
    return AssociationState::NotAssociated;
}

void XdgFileAssociation::remove()
{
    QFile::remove(mimePackagePath());
    QFile::remove(desktopEntryPath());
    // Only our own name is taken out of the user's list; everything else stays.
    const QString list = userMimeAppsPath();
    QStringList lines = readLines(list);
    if (!lines.isEmpty()) {
        const QString type = QLatin1String(MimeType);
        for (const QString &group : {kDefaults, kAdded}) {
            QStringList ids = entries(keyValue(lines, group, type));
            if (ids.removeAll(QLatin1String(DesktopId)) > 0)
                lines = withKey(lines, group, type, joined(ids));
        }
        writeLines(list, lines);
    }
    updateCaches();
}

void XdgFileAssociation::create()
{
    const QString type = QLatin1String(MimeType);
    writeText(mimePackagePath(),
              u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<mime-info xmlns=\"http://www.freedesktop.org/standards/shared-mime-info\">\n"
              "  <mime-type type=\""_s
                  + type + u"\">\n    <comment>"_s + xmlEscaped(Lang(108))
                  + u"</comment>\n    <glob pattern=\"*.lyt\"/>\n  </mime-type>\n</mime-info>\n"_s);
    // Same name as the packaged entry, which this one hides, so it carries its icon too.
    writeText(desktopEntryPath(), u"[Desktop Entry]\n"
                                  "Type=Application\n"
                                  "Name=Varno\n"
                                  "Comment="_s + Lang(109) + u"\nExec="_s + execLine()
                                      + u"\nIcon=varno\nMimeType="_s + type
                                      + u";\nCategories=Graphics;\nTerminal=false\n"_s);
    const QString list = userMimeAppsPath();
    QStringList lines = readLines(list);
    lines = withKey(lines, kDefaults, type, QLatin1String(DesktopId) + u';');
    QStringList added = entries(keyValue(lines, kAdded, type));
    added.removeAll(QLatin1String(DesktopId));
    added.prepend(QLatin1String(DesktopId));
    lines = withKey(lines, kAdded, type, joined(added));
    writeLines(list, lines);
    updateCaches();
}

QString XdgFileAssociation::applicationName(const QString &desktopId) const
{
    for (const QString &folder : QStringList{dataHome()} + dataDirs()) {
        const QStringList lines = readLines(folder + u"/applications/"_s + desktopId);
        const QString name = keyValue(lines, u"[Desktop Entry]"_s, u"Name"_s);
        if (!name.isEmpty())
            return name + u" ("_s + desktopId + u')';
    }
    return desktopId;
}

void XdgFileAssociation::resolveByHand()
{
    const Holder h = holder();
    if (h.desktopId.isEmpty())
        return;
    dialogs().message(u"Layout files (.lyt) open with %1 at the moment.\r\n\r\n"
                      "That is set by the line\r\n    %2=%3\r\nunder [Default Applications] in\r\n    %4\r\n\r\n"
                      "To open them with Varno, choose Varno as the default application for .lyt files in your "
                      "desktop's settings, or delete that line and press this button again."_s.arg(
                          applicationName(h.desktopId), QLatin1String(MimeType),
                          keyValue(readLines(h.listFile), kDefaults, QLatin1String(MimeType)), h.listFile),
                      u"Varno"_s, MsgIcon::Information);
}

void XdgFileAssociation::updateCaches() const
{
    if (!m_updateCaches)
        return;
    // The desktop picks the new type up from its caches; where the tools are missing,
    // it reads the files themselves at its next start.
    const QString mime = QStandardPaths::findExecutable(u"update-mime-database"_s);
    if (!mime.isEmpty() && QDir(dataHome() + u"/mime"_s).exists())
        QProcess::execute(mime, {dataHome() + u"/mime"_s});
    const QString desktop = QStandardPaths::findExecutable(u"update-desktop-database"_s);
    if (!desktop.isEmpty() && QDir(dataHome() + u"/applications"_s).exists())
        QProcess::execute(desktop, {dataHome() + u"/applications"_s});
}

#ifndef Q_OS_WIN
#include <QCoreApplication>

std::unique_ptr<FileAssociation> NativeFileAssociation()
{
    return std::make_unique<XdgFileAssociation>(QCoreApplication::applicationFilePath());
}
#endif
