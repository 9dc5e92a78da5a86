#include "app/Config.h"
#include "app/Language.h"
#include "app/Startup.h"
#include "app/ui/Application.h"
#include "app/ui/frmMDI.h"
#include "app/ui/frmOptions.h"
#include "support/TestSupport.h"

#include <QtTest>

using namespace Qt::StringLiterals;

class TestMainWindow : public QObject {
    Q_OBJECT
private slots:
    void commandLine_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("path");
        QTest::newRow("none") << QStringList{"Varno"} << "";
        QTest::newRow("quotes removed anywhere") << QStringList{"Varno", "\"/my maps/AU1_a.lyt\""}
                                                 << "/my maps/AU1_a.lyt";
        QTest::newRow("two paths are one") << QStringList{"Varno", "\"/a/AU1_x.lyt\"", "\"/b/AU2_y.lyt\""}
                                           << "/a/AU1_x.lyt /b/AU2_y.lyt";
        QTest::newRow("split path joined again") << QStringList{"Varno", "/my", "maps/BL3_b.lyt"}
                                                 << "/my maps/BL3_b.lyt";
    }
    void commandLine()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, path);
        QCOMPARE(CommandLinePath(arguments), path);
    }

    // Closing the main window writes the options and the recent files.
    void closeWritesConfiguration()
    {
        TempAppFolder app(false);
        ScriptedDialogs dlg;
        options() = Options::defaults();
        for (int slot : LanguageSlots())
            SetLang(slot, DefaultLanguageString(slot));
        {
            frmMDI mdi;
            mdi.RecentAdd(u"/x/AU1_old.lyt"_s);
            mdi.RecentAdd(u"/x/BL3_new.lyt"_s);
            mdi.show();
            QVERIFY(QTest::qWaitForWindowExposed(&mdi));
            QVERIFY(mdi.close());
        }
        const QByteArray cfg = ReadAll(ConfigPath());
        QVERIFY(cfg.contains("\r\nRecentFile1 /x/BL3_new.lyt\r\nRecentFile2 /x/AU1_old.lyt\r\n"));
        QVERIFY(!cfg.contains("RecentFile3"));
        QVERIFY(cfg.contains("\r\nSaveType jpg\r\n"));
        // What was written reads back as the same list.
        QStringList recent;
        GetOptions([&](const QString &p) { recent.prepend(p); });
        QCOMPARE(recent.mid(0, 2), (QStringList{u"/x/BL3_new.lyt"_s, u"/x/AU1_old.lyt"_s}));
    }

    // A first run shows the options without blocking the main window, and frees them when
    // they close. With a Varno.cfg there is nothing to show.
    void firstRunOptionsModeless()
    {
        TempAppFolder app(false);
        ScriptedDialogs dlg;
        options() = Options::defaults();
        frmMDI mdi;
        mdi.show();
        // Were the dialog modal, this ends it so that the test fails instead of hanging.
        QTimer::singleShot(0, [] { if (QWidget *w = QApplication::activeModalWidget()) w->close(); });
        QPointer<frmOptions> dialog = ShowFirstRunOptions(mdi);
        QVERIFY(dialog && dialog->isVisible() && !dialog->isModal() && !QApplication::activeModalWidget());
        QVERIFY(dialog->parent() == &mdi);
        dialog->close();
        QTRY_VERIFY(!dialog);
        WriteFile(ConfigPath(), {});
        QVERIFY(!ShowFirstRunOptions(mdi));
    }
};

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
