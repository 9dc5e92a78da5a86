#include "app/AppFolder.h"
#include "base/ConfigFile.h"
#include "base/ErrorLog.h"
#include "base/Language.h"
#include "base/Settings.h"
#include "support/TestSupport.h"

#include <QtTest>

using namespace Qt::StringLiterals;

class TestConfig : public QObject {
    Q_OBJECT
private slots:
    void readKey_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("expected");
        QTest::newRow("lower-case key, blanks trimmed") << "savetype    png   \r\n"_ba << "png";
        QTest::newRow("last non-empty wins") << "SaveType bmp\r\nSaveType gif\r\nSaveType \r\n"_ba << "gif";
        QTest::newRow("CR LF, LF or CR end a line") << "a 1\nSaveType bmp\r\nSaveType png\rb 2"_ba << "png";
        QTest::newRow("ANSI byte decoded") << "SaveType caf\xe9\r\n"_ba << u"caf\u00e9"_s;
        QTest::newRow("UTF-8 with mark") << "\xEF\xBB\xBFSaveType caf\xc3\xa9\r\n"_ba << u"caf\u00e9"_s;
    }
    void readKey()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, expected);
        TempAppFolder app(false);
        QCOMPARE(ReadKey(WriteFile(app.file(u"x.cfg"_s), file), u"SaveType"_s, u"jpg"_s), expected);
    }

    void readKeyMissingAndUnreadable()
    {
        TempAppFolder app(false);
        ScriptedDialogs dlg;
        ClearLoggedErrors();
        // A missing file or folder gives the default silently; a folder in the file's place is reported.
        QCOMPARE(ReadKey(app.file(u"no/such/dir/x.cfg"_s), u"k"_s, u"d"_s), u"d"_s);
        QDir(app.path()).mkpath(u"adir"_s);
        QCOMPARE(ReadKey(app.file(u"adir"_s), u"k"_s, u"d"_s), u"d"_s);
        QCOMPARE(LoggedErrors(), QStringList{u"75: Path/File access error in GetOptions"_s});
        QCOMPARE(dlg.messages.size(), 1);
        QCOMPARE(dlg.messages[0].title, u"Sorry :("_s);
    }

    // The exact bytes written, and what GetOptions reads back from them. A path the ANSI
    // code page cannot hold turns the file into UTF-8 with a mark, so it is kept whole.
    void saveAndReadBack()
    {
        TempAppFolder app(false);
        SetLang(50, u"Options"_s);
        const QString cyrillic = u"/home/\u0418\u0432\u0430\u043d/b3"_s;
        Options &o = options();
        o = {u"L"_s, u"/maps/au1 big.png"_s, u"a2"_s, u"a34"_s, cyrillic, u"of"_s, false, u"sf"_s, true, 250, -3,
             u"png"_s};
        // The second item is empty and the last is never written.
        QVERIFY(SaveOptions({u"r1"_s, QString(), u"r3"_s, u"never"_s}));
        const QByteArray bytes = ReadAll(ConfigPath());
        QVERIFY(bytes.startsWith("\xEF\xBB\xBF"));
        QCOMPARE(bytes.count("\r\n"), bytes.count('\n'));
        // A banner over the body; its fifth line names the file.
        QCOMPARE(bytes.split('\n')[4].right(9), " Options\r"_ba);
        QCOMPARE(bytes.mid(bytes.indexOf("\r\n\r\nLanguage") + 2),
                 "\r\nLanguage L\r\n\r\nAU1 /maps/au1 big.png\r\nAU2 a2\r\nAU34 a34\r\nBL3 " + cyrillic.toUtf8()
                     + "\r\n\r\nOpenFolder of\r\nRememberOpenFolder False\r\n\r\nSaveFolder sf\r\n"
                       "RememberSaveFolder True\r\nSavePercent 250\r\nSaveQuality -3\r\nSaveType png\r\n\r\n"
                       "RecentFile1 r1\r\nRecentFile3 r3\r\n"_ba);

        o = Options();
        QStringList recent;
        GetOptions([&](const QString &p) { recent.prepend(p); });
        QCOMPARE(o.BL3, cyrillic);
        // RecentFile10 is handed over first and RecentFile1 last.
        QCOMPARE(recent.size(), 10);
        QCOMPARE(recent.mid(0, 3), (QStringList{u"r1"_s, QString(), u"r3"_s}));
    }

    void badValues_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<int>("error");
        QTest::addColumn<int>("percent");
        QTest::newRow("percent abc") << "SavePercent abc"_ba << 13 << 0;
        QTest::newRow("percent 99999") << "SavePercent 99999"_ba << 6 << 0;
        QTest::newRow("boolean yes") << "RememberOpenFolder yes"_ba << 13 << 0;
        QTest::newRow("percent rounds half to even") << "SavePercent 12.5"_ba << 0 << 12;
    }
    void badValues()
    {
        QFETCH(QByteArray, line);
        QFETCH(int, error);
        QFETCH(int, percent);
        TempAppFolder app(false);
        WriteFile(ConfigPath(), line + "\r\n");
        try {
            GetOptions();
            QCOMPARE(options().SavePercent, percent);
        } catch (const rt::Error &e) {
            QCOMPARE(e.number(), error);
            QVERIFY(e.description().contains(QString::fromLatin1(line)));
            return;
        }
        QCOMPARE(error, 0);
    }

    // A build keeps its own folder; an installed copy works from the user's, and never
    // overwrites the user's own files there.
    void applicationFolder()
    {
        TempAppFolder app(false);
        const QString r = app.path(), user = r + u"home/varno"_s;
        for (const char *d : {"build/bin", "usr/bin"})
            QVERIFY(QDir().mkpath(r + QLatin1String(d)));
        WriteFile(r + u"share/layouts/AU1_x.lyt"_s, "shipped");
        WriteFile(user + u"/layouts/AU1_x.lyt"_s, "mine");
        qputenv("XDG_DATA_HOME", (r + u"home"_s).toUtf8());
        const auto restore = qScopeGuard([] { qunsetenv("XDG_DATA_HOME"); });
        auto folder = [&](const QString &exe) {
            return QDir::fromNativeSeparators(ApplicationFolder(r + exe, r + u"usr/bin"_s, r + u"share"_s));
        };
        QCOMPARE(folder(u"build/bin"_s), QDir::fromNativeSeparators(r + u"build/bin"_s));
        QCOMPARE(folder(u"usr/bin"_s), QDir::fromNativeSeparators(user));
        QCOMPARE(ReadAll(user + u"/layouts/AU1_x.lyt"_s), "mine"_ba);
    }
};

QTEST_GUILESS_MAIN(TestConfig)
#include "tst_config.moc"
