// The .lyt association in HKEY_CLASSES_ROOT: the shell verb and the icon live under the
// extension key itself, whose default value is the description rather than a class
// name, as Varno has always written them.

#include "app/FileAssociation.h"

#ifdef Q_OS_WIN

#include "base/Language.h"
#include "app/Registry.h"
#include "base/Settings.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <shellapi.h>

namespace {

QString exeName()
{
    return QFileInfo(QCoreApplication::applicationFilePath()).completeBaseName();
}

// "C:\Games\Varno\Varno.exe" "%1"
QString expectedCommand()
{
    return QLatin1Char('"') + AppPath() + exeName() + QStringLiteral(".exe\" \"%1\"");
}

class RegistryFileAssociation : public FileAssociation {
public:
    AssociationState state() const override
    {
        const QString value = RegGetString(HKEY_CLASSES_ROOT, QStringLiteral(".lyt\\shell\\open\\command"),
                                           QStringLiteral("(default)"));
        if (value == expectedCommand())
            return AssociationState::Associated;
        return value.isEmpty() ? AssociationState::NotAssociated : AssociationState::OtherProgram;
    }

    void remove() override
    {
        for (const char *key : {".lyt\\shell\\open\\command", ".lyt\\shell\\open", ".lyt\\shell", ".lyt\\DefaultIcon",
                                ".lyt"})
            RegDeleteKeyString(HKEY_CLASSES_ROOT, QString::fromLatin1(key));
    }

    void create() override
    {
        const QString def = QStringLiteral("(default)");
        RegSetString(HKEY_CLASSES_ROOT, QStringLiteral(".lyt"), Lang(108), def);
        RegSetString(HKEY_CLASSES_ROOT, QStringLiteral(".lyt\\DefaultIcon"), AppPath() + exeName() + QStringLiteral(".exe,1"),
                     def);
        RegSetString(HKEY_CLASSES_ROOT, QStringLiteral(".lyt\\shell"), QString(), def);
        RegSetString(HKEY_CLASSES_ROOT, QStringLiteral(".lyt\\shell\\open"), Lang(109), def);
        RegSetString(HKEY_CLASSES_ROOT, QStringLiteral(".lyt\\shell\\open\\command"), expectedCommand(), def);
    }

    void resolveByHand() override
    {
        const QByteArray folder = AppPath().toLocal8Bit();
        ShellExecuteA(nullptr, nullptr, "regedit", nullptr, folder.constData(), SW_SHOWNORMAL);
    }
};

} // namespace

std::unique_ptr<FileAssociation> NativeFileAssociation()
{
    return std::make_unique<RegistryFileAssociation>();
}

#endif
