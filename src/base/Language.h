#pragma once
// The language table: 270 slots of user-visible text, filled from the chosen .lng file
// with English defaults. Slot 210 + kind is an object kind's caption.

#include <QList>
#include <QString>

constexpr int LanguageSlotCount = 270;

// The current text of a slot (0..269); raises error 9 outside.
const QString &Lang(int slot);
// Overwrites a slot (tests and the loader).
void SetLang(int slot, const QString &text);

// Fills every used slot, in ascending order, from options().Language.
void LoadLanguage();
// Reads slot (as three digits) from the language file with def as fallback; error 9
// for a slot outside 0..269.
void SetLanguageString(int slot, const QString &defaultText);

// The slots the program uses, ascending, and their English defaults.
const QList<int> &LanguageSlots();
QString DefaultLanguageString(int slot);

// The English table in the .lng format: "NNN text" lines ending in CR LF, encoded in the
// ANSI code page (Windows-1252 off Windows), so the degree sign is the byte 0xB0.
QByteArray EnglishLanguageFile();

// Text codec of language and configuration files: a UTF-8 byte-order mark selects UTF-8,
// otherwise the ANSI code page.
QString DecodeAnsi(const QByteArray &bytes);
QByteArray EncodeAnsi(const QString &text);

// Chooses the interface font for East Asian locales; other locales are left alone.
class QFont;
void SetLocaleFont(QFont &font);
