#include "app/Registry.h"

#ifdef Q_OS_WIN

#include <vector>

namespace {
// The unnamed value is asked for by an empty name.
QByteArray valueNameOf(const QString &valueName)
{
    return valueName.toLower() == QLatin1String("(default)") ? QByteArray() : valueName.toLocal8Bit();
}
} // namespace

QString RegGetString(HKEY root, const QString &subKey, const QString &valueName)
{
    HKEY key = nullptr;
    if (RegOpenKeyExA(root, subKey.toLocal8Bit().constData(), 0, KEY_ALL_ACCESS, &key) != ERROR_SUCCESS)
        return QString();
    const QByteArray name = valueNameOf(valueName);
    std::vector<char> buffer(256, '\0');
    DWORD size = 255;
    DWORD type = 0;
    const LONG status = RegQueryValueExA(key, name.isEmpty() ? nullptr : name.constData(), nullptr, &type,
                                         reinterpret_cast<LPBYTE>(buffer.data()), &size);
    RegCloseKey(key);
    if (status != ERROR_SUCCESS)
        return QString();
    return QString::fromLocal8Bit(buffer.data()); // up to the first NUL
}

bool RegSetString(HKEY root, const QString &subKey, const QString &value, const QString &valueName)
{
    HKEY key = nullptr;
    DWORD disposition = 0;
    char keyClass[] = "REG_SZ";
    if (RegCreateKeyExA(root, subKey.toLocal8Bit().constData(), 0, keyClass, REG_OPTION_NON_VOLATILE,
                        KEY_ALL_ACCESS, nullptr, &key, &disposition)
        != ERROR_SUCCESS)
        return false;
    const QByteArray name = valueNameOf(valueName);
    const QByteArray bytes = value.toLocal8Bit();
    // The byte count is the text's length, without a terminating NUL, as always.
    const LONG status = RegSetValueExA(key, name.isEmpty() ? nullptr : name.constData(), 0, REG_SZ,
                                       reinterpret_cast<const BYTE *>(bytes.constData()), DWORD(bytes.size()));
    RegCloseKey(key);
    return status == ERROR_SUCCESS;
}

bool RegDeleteKeyString(HKEY root, const QString &subKey)
{
    return RegDeleteKeyA(root, subKey.toLocal8Bit().constData()) == ERROR_SUCCESS;
}

#endif
