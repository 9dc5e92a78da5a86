#include "base/Language.h"
#include "base/Runtime.h"
#include "base/Settings.h"
#include "support/TestSupport.h"

#include <QFont>
#include <QtTest>

using namespace Qt::StringLiterals;

class TestLanguage : public QObject {
    Q_OBJECT
private slots:
    // A null file is none at all: the built-in English, with nothing shown.
    void fileRules_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<int>("slot");
        QTest::addColumn<QString>("expected");
        QTest::newRow("three blanks and trailing blanks") << "025   Autocross  \r\n"_ba << 25 << "Autocross";
        QTest::newRow("two-digit number ignored") << "25 Rallycross\r\n"_ba << 25 << "Autocross";
        QTest::newRow("number alone keeps default") << "025\r\n"_ba << 25 << "Autocross";
        QTest::newRow("empty text keeps default") << "025 \r\n"_ba << 25 << "Autocross";
        QTest::newRow("later definition wins, CR lines") << "160 first\r160 second\r"_ba << 160 << "second";
        QTest::newRow("unused slot stays empty") << "000 zero\r\n024 x\r\n"_ba << 0 << "";
        QTest::newRow("Windows-1252 euro") << "030 \x80uro\r\n"_ba << 30 << u"\u20acuro"_s;
        QTest::newRow("comment lines ignored") << "; 025 x\r\n# header\r\n"_ba << 25 << "Autocross";
        QTest::newRow("missing file") << QByteArray() << 169 << "Save changes before closing?";
        QTest::newRow("missing file, last slot") << QByteArray() << 269 << "route checker";
    }
    void fileRules()
    {
        QFETCH(QByteArray, file);
        QFETCH(int, slot);
        QFETCH(QString, expected);
        TempAppFolder app(false);
        ScriptedDialogs dlg;
        options().Language = app.file(u"lang/Test.lng"_s);
        if (!file.isNull())
            WriteFile(options().Language, file);
        LoadLanguage();
        QCOMPARE(Lang(slot), expected);
        QVERIFY(dlg.messages.isEmpty());
    }

    void slotsOutsideTableAreErrors()
    {
        for (int slot : {-1, 270}) {
            int raised = 0;
            try {
                SetLanguageString(slot, u"x"_s);
            } catch (const rt::Error &e) {
                raised = e.number();
            }
            QCOMPARE(raised, 9);
        }
    }

    // The shipped English.lng is exactly the built-in table, in the ANSI code page, and
    // every kind's caption (slots 210 to 269) can be translated.
    void shippedEnglishFile()
    {
        const QByteArray bytes = ReadAll(BuildAppFolder() + u"lang/English.lng"_s);
        if (qEnvironmentVariableIsSet("VARNO_WRITE_ENGLISH"))
            WriteFile(qEnvironmentVariable("VARNO_WRITE_ENGLISH"), EnglishLanguageFile());
        QCOMPARE(bytes, EnglishLanguageFile());
        QVERIFY(bytes.contains("153 Hold Ctrl to constrain to 15\xb0 increments"));
        QVERIFY(bytes.startsWith("025 Autocross\r\n026 Skid Pad\r\n"));
        for (int kind = 0; kind < 60; ++kind)
            QVERIFY2(LanguageSlots().contains(210 + kind), qPrintable(QString::number(kind)));
    }

    // East Asian locales get their own interface font at 9 points; others keep theirs.
    void localeFont_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("font"); // family/points
        QTest::newRow("Korean") << "ko_KR" << "Gulim/9";
        QTest::newRow("Japanese") << "ja_JP" << "MS UI Gothic/9";
        QTest::newRow("traditional Chinese") << "zh_TW" << "PMingLiU/9";
        QTest::newRow("simplified Chinese") << "zh_CN" << "SimSun/9";
        QTest::newRow("German keeps the font") << "de_DE" << "Designed/11";
    }
    void localeFont()
    {
        QFETCH(QString, locale);
        QFETCH(QString, font);
        const QLocale previous;
        QLocale::setDefault(QLocale(locale));
        QFont f(u"Designed"_s, 11);
        SetLocaleFont(f);
        QLocale::setDefault(previous);
        QCOMPARE(f.families().value(0) + u'/' + QString::number(f.pointSize()), font);
    }
};

QTEST_GUILESS_MAIN(TestLanguage)
#include "tst_language.moc"
