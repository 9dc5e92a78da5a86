#pragma once
// Varno.cfg: reading keys, loading every setting, and writing them back.

#include <QString>
#include <QStringList>
#include <functional>

// Reads the value of key from a "key value" text file. The key must start the line and
// be followed by exactly one blank; case is ignored; the last non-empty value wins.
// A missing file gives the default silently; another read failure is logged
// " in GetOptions" and whatever was found so far is returned.
QString ReadKey(const QString &fileName, const QString &key, const QString &defaultValue);

// Loads every setting from Varno.cfg (defaults where missing), then the language, then
// passes RecentFile10 down to RecentFile1 to recentAdd. A value that cannot be converted
// (SavePercent abc) throws rt::Error 13, which start-up reports and stops on.
void GetOptions(const std::function<void(const QString &)> &recentAdd = {});

// Writes Varno.cfg. recentItems holds the captions of the recent-file menu items, most
// recent first; the last item is never written and empty ones keep their number.
// Errors are logged " in SaveOptions". Returns whether the file was written whole.
bool SaveOptions(const QStringList &recentItems);

// Conversions GetOptions uses; both throw rt::Error 13 "Type mismatch" or 6 "Overflow".
bool ParseBoolean(const QString &text);
qint16 ParseInt16(const QString &text);
