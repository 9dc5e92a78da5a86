#include "base/ConfigFile.h"

#include "base/ErrorLog.h"
#include "base/Language.h"
#include "base/Settings.h"
#include "base/Runtime.h"

#include <QFile>
#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

using namespace Qt::StringLiterals;

namespace {

// The error a failed open of a text file stands for.
int openErrorFor(const QString &fileName)
{
    const QFileInfo info(fileName);
    if (!info.exists())
        return info.absoluteDir().exists() ? rt::FileNotFound : rt::PathNotFound;
    if (info.isDir())
        return rt::PathFileAccessError;
    return rt::PermissionDenied;
}

QString trimBlanks(const QString &s)
{
    qsizetype b = 0;
    qsizetype e = s.size();
    while (b < e && s[b] == u' ')
        ++b;
    while (e > b && s[e - 1] == u' ')
        --e;
    return s.mid(b, e - b);
}

// The lines of a text file. Files edited on any system are accepted, so a line ends at
// CR LF, at LF or at a lone CR (a file saved with CR endings is not one long line).
QList<QStringView> textLines(QStringView text)
{
    QList<QStringView> lines;
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != u'\r' && text[i] != u'\n')
            continue;
        lines.append(text.sliced(start, i - start));
        if (text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n')
            ++i;
        start = i + 1;
    }
    lines.append(text.sliced(start));
    return lines;
}

// Banner of the configuration file. It is drawn with "|", "_", "/" and "\" only, so no
// line starts with a letter and none is ever read as a key.
QStringList bannerLines()
{
    return {
        u"   __      __"_s,
        u"   \\ \\    / /  ____   _ __   _ __     ___"_s,
        u"    \\ \\  / /  / _  | |  __| |  _ \\   / _ \\"_s,
        u"     \\ \\/ /  | |_| | | |    | | | | | |_| |"_s,
        u"      \\  /    \\__/_| |_|    |_| |_|  \\___/ "_s + Lang(50),
        u"       \\/"_s,
    };
}

QString boolText(bool b)
{
    return b ? u"True"_s : u"False"_s;
}

} // namespace

QString ReadKey(const QString &fileName, const QString &key, const QString &defaultValue)
{
    QString result = defaultValue;
    try {
        QFile file(fileName);
        if (!file.open(QIODevice::ReadOnly)) {
            const int err = openErrorFor(fileName);
            if (err == rt::FileNotFound || err == rt::PathNotFound || err == rt::DiskNotReady)
                return result;
            rt::raise(err);
        }
        const QString wanted = key.toLower() + u' ';
        const QString text = DecodeAnsi(file.readAll());
        if (file.error() != QFileDevice::NoError)
            rt::raise(rt::DeviceIOError);
        for (QStringView line : textLines(text)) {
            if (line.size() < wanted.size() || line.first(wanted.size()).toString().toLower() != wanted)
                continue;
            const QString value = trimBlanks(line.sliced(wanted.size()).toString());
            if (!value.isEmpty())
                result = value;
        }
    } catch (const rt::Error &e) {
        ReportError(e, u"GetOptions"_s);
    }
    return result;
}

bool ParseBoolean(const QString &text)
{
    const QString t = text.trimmed();
    if (t.compare(u"True"_s, Qt::CaseInsensitive) == 0)
        return true;
    if (t.compare(u"False"_s, Qt::CaseInsensitive) == 0)
        return false;
    bool ok = false;
    const double v = t.toDouble(&ok);
    if (!ok)
        rt::raise(rt::TypeMismatch);
    return v != 0.0;
}

qint16 ParseInt16(const QString &text)
{
    bool ok = false;
    const double v = text.trimmed().toDouble(&ok);
    if (!ok)
        rt::raise(rt::TypeMismatch);
    return rt::toInt16(v);
}

void GetOptions(const std::function<void(const QString &)> &recentAdd)
{
    const QString cfg = ConfigPath();
    const Options d = Options::defaults();
    Options &o = options();
    auto readBool = [&](const QString &key, bool def) {
        const QString text = ReadKey(cfg, key, boolText(def));
        try {
            return ParseBoolean(text);
        } catch (const rt::Error &e) {
            rt::raise(e.number(), e.description() + u" ("_s + key + u' ' + text + u')');
        }
    };
    auto readInt = [&](const QString &key, qint32 def) -> qint32 {
        const QString text = ReadKey(cfg, key, QString::number(def));
        try {
            return ParseInt16(text);
        } catch (const rt::Error &e) {
            rt::raise(e.number(), e.description() + u" ("_s + key + u' ' + text + u')');
        }
    };
    o.Language = ReadKey(cfg, u"Language"_s, d.Language);
    o.AU1 = ReadKey(cfg, u"AU1"_s, d.AU1);
    o.AU2 = ReadKey(cfg, u"AU2"_s, d.AU2);
    o.AU34 = ReadKey(cfg, u"AU34"_s, d.AU34);
    o.BL3 = ReadKey(cfg, u"BL3"_s, d.BL3);
    o.OpenFolder = ReadKey(cfg, u"OpenFolder"_s, d.OpenFolder);
    o.RememberOpenFolder = readBool(u"RememberOpenFolder"_s, d.RememberOpenFolder);
    o.SaveFolder = ReadKey(cfg, u"SaveFolder"_s, d.SaveFolder);
    o.RememberSaveFolder = readBool(u"RememberSaveFolder"_s, d.RememberSaveFolder);
    o.SavePercent = readInt(u"SavePercent"_s, d.SavePercent);
    o.SaveQuality = readInt(u"SaveQuality"_s, d.SaveQuality);
    o.SaveType = ReadKey(cfg, u"SaveType"_s, d.SaveType);

    LoadLanguage();

    // Oldest first, so that RecentFile1 ends up at the head of the list.
    for (int n = 10; n >= 1; --n) {
        const QString path = ReadKey(cfg, u"RecentFile"_s + QString::number(n), QString());
        if (recentAdd)
            recentAdd(path);
    }
}

bool SaveOptions(const QStringList &recentItems)
{
    const Options &o = options();
    QStringList lines = bannerLines();
    lines << QString() << u"Language "_s + o.Language << QString();
    lines << u"AU1 "_s + o.AU1 << u"AU2 "_s + o.AU2 << u"AU34 "_s + o.AU34 << u"BL3 "_s + o.BL3 << QString();
    lines << u"OpenFolder "_s + o.OpenFolder << u"RememberOpenFolder "_s + boolText(o.RememberOpenFolder)
          << QString();
    lines << u"SaveFolder "_s + o.SaveFolder << u"RememberSaveFolder "_s + boolText(o.RememberSaveFolder)
          << u"SavePercent "_s + QString::number(o.SavePercent)
          << u"SaveQuality "_s + QString::number(o.SaveQuality) << u"SaveType "_s + o.SaveType << QString();
    // The last menu item is never written; an empty one is skipped but keeps its number.
    for (qsizetype i = 0; i + 1 < recentItems.size(); ++i)
        if (!recentItems[i].isEmpty())
            lines << u"RecentFile"_s + QString::number(i + 1) + u' ' + recentItems[i];

    QString text;
    for (const QString &line : lines)
        text += line + u"\r\n"_s;
    // Paths the ANSI code page cannot hold are kept whole by writing UTF-8 with a mark.
    QByteArray bytes = EncodeAnsi(text);
    if (DecodeAnsi(bytes) != text)
        bytes = "\xEF\xBB\xBF" + text.toUtf8();

    return guarded(u"SaveOptions"_s, [&] {
        // Written to a temporary file and moved over the old one, so a failure never
        // leaves a half-written configuration behind.
        QSaveFile file(ConfigPath());
        if (!file.open(QIODevice::WriteOnly))
            rt::raise(openErrorFor(ConfigPath()) == rt::PathNotFound ? rt::PathNotFound : rt::PermissionDenied);
        if (file.write(bytes) != bytes.size())
            rt::raise(rt::DiskFull);
        // The bytes sit in QSaveFile's buffer until now; commit() would swap the file in
        // even when they cannot be written, leaving an empty Varno.cfg on a full disk.
        if (!file.flush())
            rt::raise(rt::DiskFull);
        if (!file.commit())
            rt::raise(rt::DeviceIOError);
    });
}
