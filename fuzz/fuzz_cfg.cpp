// ReadKey and GetOptions on a fuzzed Varno.cfg. Settings that were read are written
// with SaveOptions and must read back the same.

#include "FuzzSupport.h"

#include "base/ConfigFile.h"
#include "base/ErrorLog.h"
#include "base/Settings.h"
#include "base/Runtime.h"

#include <QStringList>

namespace {

QString describe(const Options &o)
{
    return QStringList{o.Language, o.AU1, o.AU2, o.AU34, o.BL3, o.OpenFolder,
                       o.RememberOpenFolder ? QStringLiteral("T") : QStringLiteral("F"), o.SaveFolder,
                       o.RememberSaveFolder ? QStringLiteral("T") : QStringLiteral("F"),
                       QString::number(o.SavePercent), QString::number(o.SaveQuality), o.SaveType}
        .join(QLatin1Char('|'));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzz::init();
    fuzz::write(ConfigPath(), data, size);
    fuzz::resetLog();

    // Keys with odd cases and blanks; none may fail on any file.
    for (const char *key : {"SaveType", "savepercent", "RecentFile1", "Language", "AU34", "", " "})
        ReadKey(ConfigPath(), QLatin1String(key), QStringLiteral("default"));

    options() = Options::defaults();
    QStringList recent;
    try {
        GetOptions([&](const QString &path) { recent.prepend(path); });
    } catch (const rt::Error &e) {
        // Start-up refuses a setting it cannot convert; only these two kinds exist.
        fuzz::check(e.number() == rt::TypeMismatch || e.number() == rt::Overflow, "unexpected GetOptions error",
                    e.message());
        return 0;
    }
    fuzz::check(recent.size() == 10, "not ten recent files");

    const QString first = describe(options());
    recent.append(QString()); // the menu's last item is never written
    fuzz::check(SaveOptions(recent), "SaveOptions failed", LoggedErrors().join(QLatin1Char('\n')));
    options() = Options::defaults();
    QStringList again;
    GetOptions([&](const QString &path) { again.prepend(path); });
    fuzz::check(describe(options()) == first, "settings changed by a save",
                first + QLatin1Char('\n') + describe(options()));
    recent.removeLast();
    fuzz::check(again == recent, "recent files changed by a save",
                recent.join(QLatin1Char('|')) + QLatin1Char('\n') + again.join(QLatin1Char('|')));
    return 0;
}
