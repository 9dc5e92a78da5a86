// varno-cli render, run as a user runs it: sizes from each option and from Varno.cfg,
// the picture decoded back and drawn as the editor draws it, and every failure with its
// exit status and nothing written.

#include "support/DocumentFixture.h"
#include "view/LayoutImageExport.h"

#include <QDir>
#include <QProcess>
#include <QtTest>

using namespace Qt::StringLiterals;

class TestCliRender : public QObject {
    Q_OBJECT
    TempAppFolder m_app{true};
    QString m_cli, m_layout;

    QString picture(const QString &name) const { return m_app.file(u"pictures/"_s + name); }

private slots:
    void initTestCase()
    {
        m_cli = CopyCli(m_app);
        QVERIFY(!m_cli.isEmpty());
        // An AU1 layout with one red cone in the middle (815, 1470) and a route checker.
        m_layout = WriteFile(m_app.file(u"layouts/AU1_cone.lyt"_s),
                             lytHeader(251, 2, 1) + lytRecord(-1024, -13224, 255, 0, 29, 192)
                                 + lytRecord(-2000, -11000, 255, 10, 255, 7));
    }
    void init()
    {
        QDir(m_app.file(u"pictures"_s)).removeRecursively();
        QDir().mkpath(m_app.file(u"pictures"_s));
        WriteFile(m_app.file("Varno.cfg"), "SavePercent 20\r\n");
    }

    // A row that succeeds gives the picture's size, one that fails the text on stderr.
    // LYT stands for the layout, a.* for a file in the pictures folder.
    void render_data()
    {
        QTest::addColumn<QString>("args");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("expected");
        QTest::newRow("SavePercent from Varno.cfg") << "LYT -o a.png" << 0 << "326 x 588";
        QTest::newRow("option over Varno.cfg") << "LYT -o a.png --percent 10" << 0 << "163 x 294";
        // Exactly the side asked for, not the percent box's round trip (300 came out 293).
        QTest::newRow("--width 300") << "LYT -o a.png --width 300" << 0 << "300 x 541";
        QTest::newRow("unknown format") << "LYT -o a.xyz" << 1 << "(xyz) Unknown image format. Choose a different one";
        QTest::newRow("missing layout") << "nowhere/AU1_x.lyt -o a.png" << 1
                                        << "could not be opened; nothing was written.";
        QTest::newRow("two sizes") << "LYT -o a.png --width 5 --percent 5" << 2
                                   << "give only one of --percent, --width and --height";
        QTest::newRow("quality 101") << "LYT -o a.jpg --quality 101" << 2 << "--quality must be from 0 to 100";
        QTest::newRow("not a number") << "LYT -o a.png --width wide" << 2 << "--width needs a whole number, not wide";
        QTest::newRow("no output") << "LYT" << 2 << "render needs a layout file and -o OUT";
        QTest::newRow("zero percent") << "LYT -o a.png --percent 0" << 2 << "--percent must be at least 1";
    }
    void render()
    {
        QFETCH(QString, args);
        QFETCH(int, exitCode);
        QFETCH(QString, expected);
        QStringList argv{"render"};
        for (const QString &a : args.split(' '))
            argv << (a == "LYT" ? m_layout : a.startsWith("a.") ? picture(a) : a);
        QProcess p;
        p.setWorkingDirectory(m_app.path());
        p.start(m_cli, argv);
        QVERIFY(p.waitForFinished(120000) && p.exitStatus() == QProcess::NormalExit);
        QCOMPARE(p.exitCode(), exitCode);
        // Windows' console streams end lines in CR LF.
        const QString out = QString::fromLocal8Bit(p.readAllStandardOutput()).replace(u"\r\n"_s, u"\n"_s);
        const QString err = QString::fromLocal8Bit(p.readAllStandardError());
        const QStringList written = QDir(m_app.file("pictures")).entryList(QDir::Files);
        if (exitCode) {
            QVERIFY2(err.contains(expected), qPrintable(err));
            QCOMPARE(written, QStringList());
            return;
        }
        QCOMPARE(out, picture("a.png") + ": " + expected + " pixels\n");
        QCOMPARE(err, QString()); // not a terminal, so no progress line
        const QImage back(picture("a.png"));
        // Pixel for pixel what the editor's export draws for the same layout.
        options() = Options::defaults();
        FillCatalogue();
        LayoutSession session;
        QVERIFY(session.openLayout(m_layout, LayoutSession::Missing::Refuse));
        QImage drawn(back.size(), QImage::Format_ARGB32_Premultiplied);
        QVERIFY(RenderLayoutPicture(ExportScene(session.document(), session.Background()), drawn));
        QCOMPARE(u"%1 x %2"_s.arg(back.width()).arg(back.height()), expected);
        QCOMPARE(back.convertToFormat(QImage::Format_RGB32), drawn.convertToFormat(QImage::Format_RGB32));
    }
};

QTEST_GUILESS_MAIN(TestCliRender)
#include "tst_clirender.moc"
