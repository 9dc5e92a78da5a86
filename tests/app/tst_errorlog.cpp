#include "app/RecentFiles.h"
#include "base/ErrorLog.h"
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
        QVERIFY(!guarded(u"frmLayout.LayoutOpen"_s, [] { rt::toInt16(40000.0); }));
        const QByteArray log = ReadAll(app.file(u"Varno.log"_s));
        QVERIFY2(log.startsWith('[') && log.endsWith("] 6: Overflow in frmLayout.LayoutOpen\r\n")
                     && log.count('\n') == 1,
                 log.constData());
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
        // A log that cannot be written (a folder in its place) still leaves the user told.
        QVERIFY(QFile::remove(app.file(u"Varno.log"_s)) && QDir(app.path()).mkpath(u"Varno.log"_s));
        QVERIFY(!guarded(u"frmLayout.LayoutSave"_s, [] { rt::raise(rt::DiskFull); }));
        QCOMPARE(dlg.messages.size(), 2);
        QVERIFY(dlg.messages[1].text.contains(u"61: Disk full in frmLayout.LayoutSave"_s)
                && dlg.messages[1].text.contains(u"Varno.log could not be written"_s));
    }

    // The menu keeps ten, newest first, with a spare empty item at the end until it is
    // full; a known path moves to the head and an empty one is never added.
    void recentFiles()
    {
        RecentFiles r;
        for (const QString &a : {u"a"_s, u"b"_s, QString(), u"a"_s})
            r.RecentAdd(a);
        QCOMPARE(r.items(), (QStringList{u"a"_s, u"b"_s, QString()}));
        for (const QChar c : u"cdefghijk"_s)
            r.RecentAdd(c);
        QCOMPARE(r.items().join(u','), u"k,j,i,h,g,f,e,d,c,a"_s);
    }
};

QTEST_GUILESS_MAIN(TestErrorLog)
#include "tst_errorlog.moc"
