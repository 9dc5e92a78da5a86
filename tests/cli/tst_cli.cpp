#include "support/DocumentFixture.h"

#include <QProcess>
#include <QtTest>

using namespace Qt::StringLiterals;

// varno-cli is run as a user would: a copy in its own application folder, so that its
// Varno.cfg and Varno.log are its own.
class TestCli : public QObject {
    Q_OBJECT
    std::unique_ptr<TempAppFolder> m_app;
    QString m_cli;

    struct Result {
        int exitCode = -1;
        QByteArray out, err;
    };
    Result run(const QStringList &args)
    {
        QProcess p;
        p.setWorkingDirectory(m_app->path());
        p.start(m_cli, args);
        if (!p.waitForFinished(60000) || p.exitStatus() != QProcess::NormalExit)
            return {};
        return {p.exitCode(), p.readAllStandardOutput().trimmed(), p.readAllStandardError()};
    }

private slots:
    void initTestCase()
    {
        m_app = std::make_unique<TempAppFolder>(true);
        m_cli = CopyCli(*m_app);
        QVERIFY(!m_cli.isEmpty());
    }
    void cleanupTestCase() { m_app.reset(); }

    // info --json of a layout file, and pack-info --json of a pack (a name ending in .pack).
    void json_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QByteArray>("json");
        const QByteArray cone = lytRecord(-1024, -13224, 255, 0, 29, 192);
        QTest::newRow("a cone at the middle of AU1") << "AU1_one.lyt" << lytHeader(251, 1, 1) + cone << 0
            << R"({"type":"AU1","revision":251,"laps":1,"opened":true,"objectCount":1,"objects":[{"id":14,"kind":"cone red","x":815,"y":1470,"angle":90,"width":0,"route":0}],"messages":[],"errors":[]})"_ba;
        QTest::newRow("outside is refused, overflow stops the read") << "AU1_bad.lyt"
            << lytHeader(251, 3, 1) + cone + lytRecord(-3400, -13224, 255, 0, 29, 0)
                   + lytRecord(30000, -13224, 255, 0, 29, 0) << 1
            << R"({"type":"AU1","revision":251,"laps":1,"opened":false,"objectCount":1,"objects":[{"id":14,"kind":"cone red","x":815,"y":1470,"angle":90,"width":0,"route":0}],"messages":["Object outside layout, cannot add"],"errors":["6: Overflow in frmLayout.LayoutOpen"]})"_ba;
        QTest::newRow("pack of two records")
            << "AU_t.pack" << le16(40) + le16(10) + le16(2) + packRecord(14, 0, 0, 90, 0) + packRecord(1, 40, 10, -45, 8)
            << 0
            << R"({"width":40,"height":10,"count":2,"complete":true,"records":[{"id":14,"kind":"cone red","x":0,"y":0,"angle":90,"width":0},{"id":1,"kind":"finish","x":40,"y":10,"angle":-45,"width":8}]})"_ba;
        QTest::newRow("pack count above the records present")
            << "AU_t.pack" << le16(0) + le16(0) + le16(3) + packRecord(14, 0, 0, 0, 0) << 1
            << R"({"width":0,"height":0,"count":3,"complete":false,"records":[{"id":14,"kind":"cone red","x":0,"y":0,"angle":0,"width":0}]})"_ba;
    }
    void json()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, bytes);
        QFETCH(int, exitCode);
        QFETCH(QByteArray, json);
        const bool pack = name.endsWith(u".pack"_s);
        const QString path = WriteFile(m_app->file((pack ? u"packs/"_s : u"layouts/"_s) + name), bytes);
        const Result r = run({pack ? u"pack-info"_s : u"info"_s, path, u"--json"_s});
        QCOMPARE(r.out, json);
        QCOMPARE(r.exitCode, exitCode);
    }

    // Exit status and what stderr says; "@missing" and "@short" stand for a layout that
    // does not exist and a pack whose header is cut short.
    void status_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QByteArray>("err");
        QTest::newRow("nothing") << QStringList() << 2 << "Usage:"_ba;
        QTest::newRow("unknown option") << QStringList{"info", "a.lyt", "--yaml"} << 2 << "Usage:"_ba;
        QTest::newRow("help") << QStringList{"--help"} << 0 << ""_ba;
        QTest::newRow("missing file") << QStringList{"info", "@missing", "--json"} << 1 << "Not found!?"_ba;
        QTest::newRow("short pack header") << QStringList{"pack-info", "@short"} << 1
                                           << "62: Input past end of file"_ba;
    }
    void status()
    {
        QFETCH(QStringList, args);
        QFETCH(int, exitCode);
        QFETCH(QByteArray, err);
        args.replaceInStrings(u"@missing"_s, m_app->file(u"layouts/AU1_none.lyt"_s));
        args.replaceInStrings(u"@short"_s, WriteFile(m_app->file(u"packs/AU_short.pack"_s), "\x01\x00\x02"_ba));
        const Result r = run(args);
        QCOMPARE(r.exitCode, exitCode);
        QVERIFY2(r.err.contains(err), r.err.constData());
    }

    // Resaved once and once more, the bytes stay the same. A layout the editor could not
    // show whole is never reported as read or written back, over itself or elsewhere.
    void resave_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QByteArray>("refusal"); // empty: written
        QTest::newRow("AU1") << "AU1_s.lyt"
                             << lytHeader(250, 4, 3) + lytRecord(-1024, -13224, 255, 0, 29, 192)
                                    + lytRecord(-1000, -13000, 255, 128, 0, 128)
                                    + lytRecord(-900, -13000, 255, 128 + 20, 0, 64)
                                    + lytRecord(-800, -12000, 255, 10, 255, 3) << QByteArray();
        QTest::newRow("truncated") << "AU1_keep.lyt" << lytHeader(251, 2, 1) + "\x01"_ba
                                   << "could not be opened; nothing was written."_ba;
        QTest::newRow("background missing") << "AU1_keep.lyt"
                                            << lytHeader(251, 1, 1) + lytRecord(-1024, -13224, 255, 0, 29, 192)
                                            << "could not be loaded, so its objects cannot be placed"_ba;
    }
    void resave()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, bytes);
        QFETCH(QByteArray, refusal);
        const QString background = m_app->file(u"backgrounds/AU1.png"_s);
        const bool hide = QTest::currentDataTag() == "background missing"_L1;
        if (hide)
            QVERIFY(QFile::rename(background, background + u".away"_s));
        const auto restore = qScopeGuard([&] {
            if (hide)
                QFile::rename(background + u".away"_s, background);
        });
        // The type comes from the name, so the copies keep the prefix.
        const QString in = WriteFile(m_app->file(u"layouts/"_s + name), bytes);
        const QString once = QString(in).replace(u".lyt"_s, u"_once.lyt"_s);
        const QString twice = QString(in).replace(u".lyt"_s, u"_twice.lyt"_s);
        QCOMPARE(run({u"info"_s, in}).exitCode, refusal.isEmpty() ? 0 : 1);
        for (const QString &target : refusal.isEmpty() ? QStringList{} : QStringList{in, once}) {
            const Result r = run({u"resave"_s, in, target});
            QCOMPARE(r.exitCode, 1);
            QVERIFY2(r.err.contains(refusal), r.err.constData());
        }
        QVERIFY(refusal.isEmpty() || (ReadAll(in) == bytes && !QFile::exists(once)));
        if (!refusal.isEmpty())
            return;
        QCOMPARE(run({u"resave"_s, in, once}).exitCode, 0);
        QCOMPARE(run({u"resave"_s, once, twice}).exitCode, 0);
        const QByteArray a = ReadAll(once);
        QCOMPARE(ReadAll(twice), a);
        QCOMPARE(a.left(6), "LFSLYT"_ba);
    }
};

QTEST_GUILESS_MAIN(TestCli)
#include "tst_cli.moc"
