#include "base/Language.h"
#include "base/Runtime.h"
#include "base/Settings.h"
#include "support/TestSupport.h"

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
        QTest::newRow("empty text keeps default") << "025 \r\n"_ba << 25 << "Autocross";
        QTest::newRow("later definition wins, CR lines") << "160 first\r160 second\r"_ba << 160 << "second";
        QTest::newRow("Windows-1252 euro") << "030 \x80uro\r\n"_ba << 30 << u"\u20acuro"_s;
        QTest::newRow("comment lines ignored") << "; 025 x\r\n# header\r\n"_ba << 25 << "Autocross";
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

    void slotPastTableIsAnError()
    {
        int raised = 0;
        try {
            SetLanguageString(270, u"x"_s);
        } catch (const rt::Error &e) {
            raised = e.number();
        }
        QCOMPARE(raised, 9);
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
        for (int kind = 0; kind < 60; ++kind)
            QVERIFY2(LanguageSlots().contains(210 + kind), qPrintable(QString::number(kind)));
    }
};

QTEST_GUILESS_MAIN(TestLanguage)
#include "tst_language.moc"
