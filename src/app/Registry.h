#pragma once
// String values under a registry root, for the .lyt association (Windows only).
// A value name of "(default)", in any letter case, means the key's unnamed value.

#include <QtGlobal>

#ifdef Q_OS_WIN
#include <QString>
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

// The value, up to its first NUL and at most 255 characters; empty when the key or
// the value does not exist.
QString RegGetString(HKEY root, const QString &subKey, const QString &valueName);
// Creates or opens the key and writes the value as REG_SZ; whether that worked.
bool RegSetString(HKEY root, const QString &subKey, const QString &value, const QString &valueName);
// Deletes the key, which must have no subkeys; whether that worked.
bool RegDeleteKeyString(HKEY root, const QString &subKey);
#endif
