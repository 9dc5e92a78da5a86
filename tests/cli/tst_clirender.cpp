// varno-cli render, run as a user runs it: sizes from each option and from Varno.cfg,
// the picture decoded back, and every failure with its exit status and nothing written.

#include "support/DocumentFixture.h"
#include "view/LayoutImageExport.h"

#include <QDir>
#include <QProcess>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

// An AU1 layout with one red cone in the middle (815, 1470) and a route checker.
QByteArray au1Layout()
{
    return lytHeader(251, 2, 1) + lytRecord(-1024, -13224, 255, 0, 29, 192) + lytRecord(-2000, -11000, 255, 10, 255, 7);
}

} // namespace

class TestCliRender : public QObject {
    Q_OBJECT
    std::unique_ptr<TempAppFolder> m_app;
    QString m_cli, m_layout;

    struct Result {
        int exitCode = -1;
        QString out, err;
    };
    Result run(const QStringList &args)
    {
        QProcess p;
        p.setWorkingDirectory(m_app->path());
        p.start(m_cli, args);
        if (!p.waitForFinished(120000) || p.exitStatus() != QProcess::NormalExit)
            return {};
        // Windows' console streams end lines in CR LF.
        return {p.exitCode(), QString::fromLocal8Bit(p.readAllStandardOutput()).replace(u"\r\n"_s, u"\n"_s),
                QString::fromLocal8Bit(p.readAllStandardError())};
    }
    QString picture(const QString &name) const { return m_app->file(u"pictures/"_s + name); }

private slots:
    void initTestCase()
    {
        m_app = std::make_unique<TempAppFolder>(true);
        m_cli = CopyCli(*m_app);
        QVERIFY(!m_cli.isEmpty());
        m_layout = WriteFile(m_app->file(u"layouts/AU1_cone.lyt"_s), au1Layout());
    }
    void cleanupTestCase() { m_app.reset(); }
    void init()
    {
        QDir(m_app->file(u"pictures"_s)).removeRecursively();
        QDir().mkpath(m_app->file(u"pictures"_s));
        QFile::remove(m_app->file(u"Varno.cfg"_s));
    }

    void sizes_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QByteArray>("config");
        QTest::addColumn<QSize>("size");
        QTest::newRow("default 100%") << QStringList() << QByteArray() << QSize(1630, 2940);
        QTest::newRow("--percent 50") << QStringList{"--percent", "50"} << QByteArray() << QSize(815, 1470);
        QTest::newRow("--width 326") << QStringList{"--width", "326"} << QByteArray() << QSize(326, 588);
        QTest::newRow("--height 294") << QStringList{"--height", "294"} << QByteArray() << QSize(163, 294);
        // Exactly the side asked for, not the percent box's round trip (300 came out 293).
        QTest::newRow("--width 300") << QStringList{"--width", "300"} << QByteArray() << QSize(300, 541);
        QTest::newRow("--height 500") << QStringList{"--height", "500"} << QByteArray() << QSize(277, 500);
        QTest::newRow("SavePercent from Varno.cfg") << QStringList() << "SavePercent 20\r\n"_ba << QSize(326, 588);
        QTest::newRow("option over Varno.cfg") << QStringList{"--percent", "10"} << "SavePercent 20\r\n"_ba
                                               << QSize(163, 294);
    }
    void sizes()
    {
        QFETCH(QStringList, args);
        QFETCH(QByteArray, config);
        QFETCH(QSize, size);
        if (!config.isEmpty())
            WriteFile(m_app->file(u"Varno.cfg"_s), config);
        const Result r = run(QStringList{u"render"_s, m_layout, u"-o"_s, picture(u"a.png"_s)} + args);
        QCOMPARE(r.exitCode, 0);
        QCOMPARE(r.out, u"%1: %2 x %3 pixels\n"_s.arg(picture(u"a.png"_s)).arg(size.width()).arg(size.height()));
        // Not a terminal, so no progress line.
        QCOMPARE(r.err, QString());
        const QImage back(picture(u"a.png"_s));
        QCOMPARE(back.size(), size);
        // Pixel for pixel what the editor's export draws for the same layout.
        options() = Options::defaults();
        FillCatalogue();
        LayoutSession session;
        QVERIFY(session.open(m_layout, LayoutSession::Missing::Refuse));
        QImage expected(size, QImage::Format_ARGB32_Premultiplied);
        QVERIFY(RenderLayoutPicture(ExportScene(session.document(), session.Background()), expected));
        QCOMPARE(back.convertToFormat(QImage::Format_RGB32), expected.convertToFormat(QImage::Format_RGB32));
        QVERIFY(expected != QImage(m_app->file(u"backgrounds/AU1.png"_s))
                                .scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                                .convertToFormat(QImage::Format_ARGB32_Premultiplied));
    }

    void quality()
    {
        QCOMPARE(run({u"render"_s, m_layout, u"-o"_s, picture(u"low.jpg"_s), u"--quality"_s, u"5"_s}).exitCode, 0);
        WriteFile(m_app->file(u"Varno.cfg"_s), "SaveQuality 98\r\n");
        QCOMPARE(run({u"render"_s, m_layout, u"-o"_s, picture(u"high.JPG"_s)}).exitCode, 0);
        const qint64 low = QFileInfo(picture(u"low.jpg"_s)).size(), high = QFileInfo(picture(u"high.JPG"_s)).size();
        QVERIFY2(low * 2 < high, qPrintable(u"%1 vs %2"_s.arg(low).arg(high)));
        QCOMPARE(QImage(picture(u"high.JPG"_s)).size(), QSize(1630, 2940));
    }

    void failures_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("message");
        const QString out = u"OUT"_s;
        QTest::newRow("unknown format") << QStringList{u"LYT"_s, u"-o"_s, u"a.xyz"_s} << 1
                                        << u"(xyz) Unknown image format. Choose a different one"_s;
        QTest::newRow("missing layout") << QStringList{u"nowhere/AU1_x.lyt"_s, u"-o"_s, u"a.png"_s} << 1
                                        << u"could not be opened; nothing was written."_s;
        QTest::newRow("two sizes") << QStringList{u"LYT"_s, u"-o"_s, u"a.png"_s, u"--width"_s, u"5"_s, u"--percent"_s,
                                                  u"5"_s}
                                   << 2 << u"give only one of --percent, --width and --height"_s;
        QTest::newRow("quality 101") << QStringList{u"LYT"_s, u"-o"_s, u"a.jpg"_s, u"--quality"_s, u"101"_s} << 2
                                     << u"--quality must be from 0 to 100"_s;
        QTest::newRow("not a number") << QStringList{u"LYT"_s, u"-o"_s, u"a.png"_s, u"--width"_s, u"wide"_s} << 2
                                      << u"--width needs a whole number, not wide"_s;
        QTest::newRow("no output") << QStringList{u"LYT"_s} << 2 << u"render needs a layout file and -o OUT"_s;
        QTest::newRow("zero percent") << QStringList{u"LYT"_s, u"-o"_s, u"a.png"_s, u"--percent"_s, u"0"_s} << 2
                                      << u"--percent must be at least 1"_s;
    }
    void failures()
    {
        QFETCH(QStringList, args);
        QFETCH(int, exitCode);
        QFETCH(QString, message);
        for (QString &a : args) {
            if (a == u"LYT"_s)
                a = m_layout;
            else if (a.startsWith(u"a."_s))
                a = picture(a);
        }
        const Result r = run(QStringList{u"render"_s} + args);
        QCOMPARE(r.exitCode, exitCode);
        QVERIFY2(r.err.contains(message), qPrintable(r.err));
        QCOMPARE(QDir(m_app->file(u"pictures"_s)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
    }
};

QTEST_GUILESS_MAIN(TestCliRender)
#include "tst_clirender.moc"
