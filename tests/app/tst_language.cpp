#include "base/Language.h"
#include "base/Settings.h"
#include "base/Runtime.h"
#include "support/TestSupport.h"

#include <QFont>
#include <QtTest>

using namespace Qt::StringLiterals;

class TestLanguage : public QObject {
    Q_OBJECT
private slots:
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
        QTest::newRow("translated kind caption") << "224 Pylone rouge\r\n"_ba << 224 << "Pylone rouge";
        QTest::newRow("unused slot stays empty") << "000 zero\r\n024 x\r\n"_ba << 0 << "";
        QTest::newRow("ANSI degree sign") << "153 15\xb0 steps\r\n"_ba << 153 << u"15\u00b0 steps"_s;
        QTest::newRow("Windows-1252 euro") << "030 \x80uro\r\n"_ba << 30 << u"\u20acuro"_s;
        QTest::newRow("comment lines ignored") << "; 025 x\r\n# header\r\n"_ba << 25 << "Autocross";
    }
    void fileRules()
    {
        QFETCH(QByteArray, file);
        QFETCH(int, slot);
        QFETCH(QString, expected);
        TempAppFolder app(false);
        options().Language = WriteFile(app.file(u"lang/Test.lng"_s), file);
        LoadLanguage();
        QCOMPARE(Lang(slot), expected);
    }

    void missingFileGivesEnglish()
    {
        TempAppFolder app(false);
        ScriptedDialogs dlg;
        options().Language = app.file(u"lang/None.lng"_s);
        LoadLanguage();
        QCOMPARE(Lang(169), u"Save changes before closing?"_s);
        QCOMPARE(Lang(32), u"Save"_s);
        QCOMPARE(Lang(196), u"Save"_s);
        QCOMPARE(Lang(269), u"route checker"_s);
        QVERIFY(dlg.messages.isEmpty());
    }

    void slotsOutsideTableAreErrors()
    {
        for (int slot : {-1, 270}) {
            try {
                SetLanguageString(slot, u"x"_s);
                QFAIL("no error");
            } catch (const rt::Error &e) {
                QCOMPARE(e.number(), 9);
            }
        }
    }

    void table()
    {
        QCOMPARE(LanguageSlots().size(), 147);
        QVERIFY(std::is_sorted(LanguageSlots().begin(), LanguageSlots().end()));
        QCOMPARE(LanguageSlots().first(), 25);
        QCOMPARE(LanguageSlots().last(), 269);
        for (int kind = 0; kind < 60; ++kind)
            QVERIFY2(LanguageSlots().contains(210 + kind), qPrintable(QString::number(kind)));
    }

    // The shipped English.lng is exactly the built-in table, in the ANSI code page.
    void shippedEnglishFile()
    {
        const QString shipped = BuildAppFolder() + u"lang/English.lng"_s;
        const QByteArray bytes = ReadAll(shipped);
        if (qEnvironmentVariableIsSet("VARNO_WRITE_ENGLISH"))
            WriteFile(qEnvironmentVariable("VARNO_WRITE_ENGLISH"), EnglishLanguageFile());
        QCOMPARE(bytes, EnglishLanguageFile());
        QVERIFY(bytes.contains("153 Hold Ctrl to constrain to 15\xb0 increments"));
        QVERIFY(bytes.startsWith("025 Autocross\r\n026 Skid Pad\r\n"));
    }

    // East Asian locales get their own interface font at 9 points; others keep theirs.
    void localeFont_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("family");
        QTest::addColumn<int>("points");
        QTest::newRow("Korean") << "ko_KR" << "Gulim" << 9;
        QTest::newRow("Japanese") << "ja_JP" << "MS UI Gothic" << 9;
        QTest::newRow("traditional Chinese") << "zh_TW" << "PMingLiU" << 9;
        QTest::newRow("simplified Chinese") << "zh_CN" << "SimSun" << 9;
        QTest::newRow("German keeps the font") << "de_DE" << "Designed" << 11;
    }
    void localeFont()
    {
        QFETCH(QString, locale);
        QFETCH(QString, family);
        QFETCH(int, points);
        const QLocale previous;
        QLocale::setDefault(QLocale(locale));
        QFont font(u"Designed"_s, 11);
        SetLocaleFont(font);
        QLocale::setDefault(previous);
        QCOMPARE(font.families().value(0), family);
        QCOMPARE(font.pointSize(), points);
    }
};

QTEST_GUILESS_MAIN(TestLanguage)
#include "tst_language.moc"
