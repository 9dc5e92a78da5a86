#include "base/ErrorLog.h"
#include "app/RecentFiles.h"
#include "base/Settings.h"
#include "support/TestSupport.h"

#include <QtTest>

using namespace Qt::StringLiterals;

class TestErrorLog : public QObject {
    Q_OBJECT
private slots:
    void handlerLogsAndShows()
    {
        TempAppFolder app(false);
        ScriptedDialogs dlg;
        ClearLoggedErrors();
        const bool ok = guarded(u"frmLayout.LayoutOpen"_s, [] { rt::toInt16(40000.0); });
        QVERIFY(!ok);
        const QByteArray log = ReadAll(app.file(u"Varno.log"_s));
        QVERIFY2(log.startsWith('[') && log.endsWith("] 6: Overflow in frmLayout.LayoutOpen\r\n"), log.constData());
        QCOMPARE(log.count('\n'), 1);
        QCOMPARE(LoggedErrors(), QStringList{u"6: Overflow in frmLayout.LayoutOpen"_s});
        QCOMPARE(dlg.messages.size(), 1);
        QCOMPARE(dlg.messages[0].title, u"Sorry :("_s);
        QCOMPARE(dlg.messages[0].text,
                 u"Unexpected error!?\r\n\r\n6: Overflow in frmLayout.LayoutOpen\r\n\r\n"
                 "If it doesn't exist, Varno.log has been created with\r\n"
                 "this error message appended to it. Please report this to Quillan via\r\nthe LFS forum."_s);
        // A second error appends; a log-only report shows nothing.
        LogError(u"9: Subscript out of range in x"_s, 0);
        QCOMPARE(ReadAll(app.file(u"Varno.log"_s)).count('\n'), 2);
        QCOMPARE(dlg.messages.size(), 1);
    }

    void unwritableLogStillTellsTheUser()
    {
        TempAppFolder app(false);
        ScriptedDialogs dlg;
        QDir(app.path()).mkpath(u"Varno.log"_s); // a folder where the log should be
        QVERIFY(!guarded(u"frmLayout.LayoutSave"_s, [] { rt::raise(rt::DiskFull); }));
        QCOMPARE(dlg.messages.size(), 1);
        QVERIFY(dlg.messages[0].text.contains(u"61: Disk full in frmLayout.LayoutSave"_s)
                && dlg.messages[0].text.contains(u"Varno.log could not be written"_s));
    }

    void recentFiles_data()
    {
        QTest::addColumn<QStringList>("adds");
        QTest::addColumn<QStringList>("removes");
        QTest::addColumn<QStringList>("expected");
        QStringList eleven;
        for (int i = 1; i <= 11; ++i)
            eleven << u"/l/%1.lyt"_s.arg(i);
        QStringList lastTen;
        for (int i = 11; i >= 2; --i)
            lastTen << u"/l/%1.lyt"_s.arg(i);
        // The menu keeps a spare empty item at the end until it is full.
        QTest::newRow("eleven keep ten, newest first") << eleven << QStringList() << lastTen;
        QTest::newRow("known path moves to head") << QStringList{"a", "b", "c", "a"} << QStringList()
                                                  << QStringList{"a", "c", "b", ""};
        QTest::newRow("empty path never added") << QStringList{"a", "", "b"} << QStringList()
                                                << QStringList{"b", "a", ""};
        QTest::newRow("remove the only path") << QStringList{"a"} << QStringList{"a"} << QStringList{""};
        QTest::newRow("remove from the middle") << QStringList{"a", "b", "c"} << QStringList{"b"}
                                                << QStringList{"c", "a", ""};
        QTest::newRow("remove is case-sensitive") << QStringList{"a"} << QStringList{"A"} << QStringList{"a", ""};
    }
    void recentFiles()
    {
        QFETCH(QStringList, adds);
        QFETCH(QStringList, removes);
        QFETCH(QStringList, expected);
        RecentFiles r;
        for (const QString &a : adds)
            r.RecentAdd(a);
        for (const QString &x : removes)
            r.RecentRemove(x);
        QCOMPARE(r.items(), expected);
    }
};

QTEST_GUILESS_MAIN(TestErrorLog)
#include "tst_errorlog.moc"
