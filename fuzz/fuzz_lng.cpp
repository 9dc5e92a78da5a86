// LoadLanguage on a fuzzed .lng. Every slot must hold a text afterwards, and the
// configuration written with those texts (the banner carries one) must read back.

#include "FuzzSupport.h"

#include "base/ConfigFile.h"
#include "base/ErrorLog.h"
#include "base/Language.h"
#include "base/Settings.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzz::init();
    const QString path = fuzz::app(QStringLiteral("lang/Fuzz.lng"));
    fuzz::write(path, data, size);
    fuzz::resetLog();

    options() = Options::defaults();
    options().Language = path;
    options().SaveType = QStringLiteral("gif");
    LoadLanguage();
    fuzz::check(LoggedErrors().isEmpty(), "a readable language file logged an error",
                LoggedErrors().join(QLatin1Char('\n')));
    for (int slot : LanguageSlots())
        fuzz::check(!Lang(slot).isEmpty(), "an empty text", QString::number(slot));

    fuzz::check(SaveOptions({}), "SaveOptions failed");
    options() = Options::defaults();
    GetOptions();
    fuzz::check(options().Language == path && options().SaveType == QLatin1String("gif"),
                "a language text broke Varno.cfg", options().Language + QLatin1Char(' ') + options().SaveType);
    return 0;
}
