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
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("expected");
        QTest::newRow("lower-case key, blanks trimmed") << "savetype    png   \r\n"_ba << "SaveType" << "png";
        QTest::newRow("blanks only keep default") << "SaveType    \r\n"_ba << "SaveType" << "jpg";
        QTest::newRow("key alone keeps default") << "SaveType\r\n"_ba << "SaveType" << "jpg";
        QTest::newRow("tab does not separate") << "SaveType\tpng\r\n"_ba << "SaveType" << "jpg";
        QTest::newRow("longer key does not match") << "SaveTypeX png\r\n"_ba << "SaveType" << "jpg";
        QTest::newRow("key must start the line") << " SaveType png\r\n"_ba << "SaveType" << "jpg";
        QTest::newRow("last non-empty wins") << "SaveType bmp\r\nSaveType gif\r\nSaveType \r\n"_ba << "SaveType"
                                             << "gif";
        QTest::newRow("CR LF, LF or CR end a line") << "a 1\nSaveType bmp\r\nSaveType png\rb 2"_ba << "SaveType"
                                                    << "png";
        QTest::newRow("value keeps inner blanks") << "AU1 C:\\My Maps\\a b.png \r\n"_ba << "AU1"
                                                  << "C:\\My Maps\\a b.png";
        QTest::newRow("tabs inside value kept") << "SaveType \tpng\r\n"_ba << "SaveType" << "\tpng";
        QTest::newRow("ANSI byte decoded") << "Language caf\xe9\r\n"_ba << "Language" << u"caf\u00e9"_s;
        QTest::newRow("UTF-8 with mark") << "\xEF\xBB\xBFLanguage caf\xc3\xa9\r\n"_ba << "Language"
                                         << u"caf\u00e9"_s;
    }
    void readKey()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, key);
        QFETCH(QString, expected);
        TempAppFolder app(false);
        const QString path = WriteFile(app.file(u"x.cfg"_s), file);
        QCOMPARE(ReadKey(path, key, u"jpg"_s), expected);
    }

    void readKeyMissingAndUnreadable()
    {
        TempAppFolder app(false);
        ScriptedDialogs dlg;
        ClearLoggedErrors();
        // Missing file or folder: the default, silently.
        QCOMPARE(ReadKey(app.file(u"none.cfg"_s), u"k"_s, u"d"_s), u"d"_s);
        QCOMPARE(ReadKey(app.file(u"no/such/dir/x.cfg"_s), u"k"_s, u"d"_s), u"d"_s);
        QVERIFY(dlg.messages.isEmpty());
        // A folder where the file should be: reported, default returned.
        QDir(app.path()).mkpath(u"adir"_s);
        QCOMPARE(ReadKey(app.file(u"adir"_s), u"k"_s, u"d"_s), u"d"_s);
        QCOMPARE(LoggedErrors(), QStringList{u"75: Path/File access error in GetOptions"_s});
        QCOMPARE(dlg.messages.size(), 1);
        QCOMPARE(dlg.messages[0].title, u"Sorry :("_s);
    }

    // The exact bytes written, and what GetOptions reads back from them.
    void saveAndReadBack()
    {
        TempAppFolder app(false);
        SetLang(50, u"Options"_s);
        Options &o = options();
        o = Options::defaults();
        o.Language = u"L"_s;
        o.AU1 = u"/maps/au1 big.png"_s;
        o.BL3 = u"b3"_s;
        o.RememberOpenFolder = false;
        o.SaveFolder = u"sf"_s;
        o.SavePercent = 250;
        o.SaveQuality = -3;
        o.SaveType = u"png"_s;
        const Options saved = o;
        // The second item is empty and the last is never written.
        QVERIFY(SaveOptions({u"r1"_s, QString(), u"r3"_s, u"never"_s}));
        const QByteArray bytes = ReadAll(ConfigPath());
        const QList<QByteArray> lines = bytes.split('\n');
        QVERIFY(bytes.endsWith("\r\n"));
        for (int i = 0; i + 1 < lines.size(); ++i)
            QVERIFY2(lines[i].endsWith('\r'), lines[i].constData());
        // A banner over the body; its fifth line names the file.
        QVERIFY(lines[4].endsWith(" Options\r"));
        const QByteArray body = bytes.mid(bytes.indexOf("\r\n\r\nLanguage") + 2);
        QCOMPARE(body, "\r\nLanguage L\r\n\r\nAU1 /maps/au1 big.png\r\nAU2 " + saved.AU2.toLocal8Bit() + "\r\nAU34 "
                           + saved.AU34.toLocal8Bit() + "\r\nBL3 b3\r\n\r\nOpenFolder " + saved.OpenFolder.toLocal8Bit()
                           + "\r\nRememberOpenFolder False\r\n\r\n"
                             "SaveFolder sf\r\nRememberSaveFolder True\r\nSavePercent 250\r\nSaveQuality -3\r\n"
                             "SaveType png\r\n\r\nRecentFile1 r1\r\nRecentFile3 r3\r\n"_ba);

        o = Options();
        QStringList recent;
        GetOptions([&](const QString &p) { recent.prepend(p); });
        QCOMPARE((QStringList{o.Language, o.AU1, o.AU2, o.BL3, o.OpenFolder, o.SaveFolder, o.SaveType}),
                 (QStringList{saved.Language, saved.AU1, saved.AU2, saved.BL3, saved.OpenFolder, saved.SaveFolder,
                              saved.SaveType}));
        QCOMPARE((QList<int>{o.RememberOpenFolder, o.RememberSaveFolder, o.SavePercent, o.SaveQuality}),
                 (QList<int>{false, true, 250, -3}));
        // RecentFile10 is handed over first and RecentFile1 last.
        QCOMPARE(recent.size(), 10);
        QCOMPARE(recent.mid(0, 3), (QStringList{u"r1"_s, QString(), u"r3"_s}));
    }

    // A path the ANSI code page cannot hold is kept whole.
    void unicodePathKept()
    {
        TempAppFolder app(false);
        options() = Options::defaults();
        const QString folder = u"/home/\u0418\u0432\u0430\u043d/layouts"_s;
        options().SaveFolder = folder;
        QVERIFY(SaveOptions({}));
        options() = Options();
        GetOptions();
        QCOMPARE(options().SaveFolder, folder);
    }

    void badValues_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<int>("error");
        QTest::newRow("percent abc") << "SavePercent abc"_ba << 13;
        QTest::newRow("percent 99999") << "SavePercent 99999"_ba << 6;
        QTest::newRow("quality -32769") << "SaveQuality -32769"_ba << 6;
        QTest::newRow("boolean yes") << "RememberOpenFolder yes"_ba << 13;
        QTest::newRow("boolean number") << "RememberOpenFolder 0"_ba << 0;
        QTest::newRow("boolean any case") << "RememberSaveFolder fALSE"_ba << 0;
        QTest::newRow("percent rounds half to even") << "SavePercent 12.5"_ba << 0;
    }
    void badValues()
    {
        QFETCH(QByteArray, line);
        QFETCH(int, error);
        TempAppFolder app(false);
        WriteFile(ConfigPath(), line + "\r\n");
        int raised = 0;
        try {
            GetOptions();
        } catch (const rt::Error &e) {
            raised = e.number();
            QVERIFY(e.description().contains(QString::fromLatin1(line)));
        }
        QCOMPARE(raised, error);
        if (line.startsWith("SavePercent 12.5"))
            QCOMPARE(options().SavePercent, 12);
    }

    // A build keeps its own folder; an installed copy works from the user's, filled once.
    void applicationFolder_data()
    {
        QTest::addColumn<QString>("exe");
        QTest::addColumn<QString>("installed");
        QTest::addColumn<bool>("perUser");
        QTest::newRow("build runs in place") << "build/bin" << "usr/bin" << false;
        QTest::newRow("installed") << "usr/bin" << "usr/bin" << true;
#ifndef Q_OS_WIN // shortcuts are files there, not links
        QTest::newRow("installed, seen through a link") << "link" << "usr/bin" << true;
#endif
        QTest::newRow("no install location") << "usr/bin" << "" << false;
    }
    void applicationFolder()
    {
        QFETCH(QString, exe);
        QFETCH(QString, installed);
        QFETCH(bool, perUser);
        TempAppFolder app(false);
        const QString r = app.path(), user = r + u"home/varno"_s;
        for (const char *d : {"build/bin", "usr/bin", "share/packs"})
            QVERIFY(QDir().mkpath(r + QLatin1String(d)));
        if (exe == u"link")
            QVERIFY(QFile::link(r + u"usr/bin"_s, r + exe));
        WriteFile(r + u"share/objects/cone.png"_s, "shipped");
        WriteFile(r + u"share/layouts/AU1_x.lyt"_s, "shipped");
        WriteFile(user + u"/layouts/AU1_x.lyt"_s, "mine");
        qputenv("XDG_DATA_HOME", (r + u"home"_s).toUtf8());
        const auto restore = qScopeGuard([] { qunsetenv("XDG_DATA_HOME"); });

        const QString bin = installed.isEmpty() ? QString() : r + installed;
        const QString folder = ApplicationFolder(r + exe, bin, r + u"share"_s);
        QCOMPARE(QDir::fromNativeSeparators(folder), QDir::fromNativeSeparators(perUser ? user : r + exe));
        QCOMPARE(QFileInfo::exists(user + u"/objects/cone.png"_s), perUser);
        QCOMPARE(QDir(user + u"/packs"_s).exists(), perUser);
        QCOMPARE(ReadAll(user + u"/layouts/AU1_x.lyt"_s), "mine"_ba);
        // Every default follows the folder.
        SetAppPath(folder);
        GetOptions();
        QCOMPARE(options().AU34, AppPath() + u"backgrounds"_s + QDir::separator() + u"AU34.png"_s);
        QCOMPARE(options().OpenFolder, AppPath() + u"layouts"_s);
        QCOMPARE(options().SavePercent, 100);
        // Filled once per version: a shipped file the user deleted stays deleted.
        QFile::remove(user + u"/objects/cone.png"_s);
        ApplicationFolder(r + exe, bin, r + u"share"_s);
        QVERIFY(!QFileInfo::exists(user + u"/objects/cone.png"_s));
    }
};

QTEST_GUILESS_MAIN(TestConfig)
#include "tst_config.moc"
