#include "support/DocumentFixture.h"

#include "base/ErrorLog.h"

#include <QSignalSpy>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {
const QString kOverflow = u"6: Overflow in frmLayout.LayoutOpen"_s;
const QString kPastEnd = u"62: Input past end of file in frmLayout.LayoutOpen"_s;

} // namespace

class TestLayoutSession : public DocumentTest {
    Q_OBJECT
private slots:

    // Bytes opened as a 1000 x 800 layout: the objects that came in, and the one refusal
    // or logged error, if any. (tst_cli reads route checkers, restricted areas and an empty
    // file of an unknown type.)
    void open_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("objects");
        QTest::addColumn<QString>("problem"); // "refused <slot>", a logged error, or empty
        auto row = [](const char *name, const char *type, const QByteArray &bytes, const char *objects,
                      const QString &problem = {}) {
            QTest::newRow(name) << QString::fromLatin1(type) + u".lyt"_s << bytes
                                << QString::fromLatin1(objects) << problem;
        };
        auto one = [](int revision, const QByteArray &record) { return lytHeader(revision, 1, 3) + record; };
        // An AU1 record at (0, -13224), which is (724, 400).
        auto au1 = [](int flags, int index, int heading) {
            return lytHeader(0, 1, 3) + lytRecord(0, -13224, 0, flags, index, heading);
        };
        row("flags 137: checkpoint 1, width 4", "AU1", au1(137, 0, 128), "2@724,400 a0 w4");
        row("start", "AU1", au1(128, 0, 0), "0@724,400 a-180 w0");
        row("finish", "AU1", au1(148, 0, 64), "1@724,400 a-90 w10");
        row("restricted point right", "AU1", au1(139, 255, 1), "58@724,400 a-179 w4");
        row("unknown index is kind 60", "AU1", au1(0, 200, 128), "", u"refused 162"_s);
        row("control flags below 128", "AU1", au1(100, 0, 128), "", kOverflow);
        row("AU1 x overflows", "AU1", one(0, lytRecord(32000, -13224, 0, 0, 29, 128)), "", kOverflow);
        row("BL index 33 is the first match", "BL3", one(251, lytRecord(-3622, 0, 35, 0, 33, 128)),
            "17@500,604 a0 w0");
        row("BL revision 0 as 250", "bl3", one(0, lytRecord(-3622, 0, 35, 0, 82, 128)), "54@578,604 a0 w0");
        row("BL revision 252 has no map", "BL3", one(252, lytRecord(-3622, 0, 35, 0, 82, 128)), "",
            u"refused 163"_s);
        row("AU3 displaced onto the layout", "AU3", one(0, lytRecord(-1513, 0, 255, 0, 29, 128)),
            "14@100,512 a0 w0");
        row("AU4 displaced out of it", "AU4", one(0, lytRecord(-1513, -13168, 255, 0, 29, 128)), "",
            u"refused 163"_s);
        row("AU3 sum overflows", "AU3", one(0, lytRecord(-1513, -30000, 255, 0, 29, 128)), "", kOverflow);

        const QByteArray cone = lytRecord(0, -13224, 0, 0, 29, 128);
        row("short header", "AU1", QByteArray("LFSLYT\0", 7), "", kPastEnd);
        row("negative count", "AU1", lytHeader(251, -32767, 0) + cone, "", kOverflow);
        row("truncated record keeps the others", "AU1", lytHeader(251, 3, 0) + cone + cone + cone.left(4),
            "14@724,400 a0 w0; 14@724,400 a0 w0", kPastEnd);
        row("unknown type with objects", "XY1", lytHeader(251, 1, 0) + cone, "",
            u"5: XY1.lyt\r\n\r\nUnsupported layout. Currently only AU1, AU2, AU3, AU4 and BL3 are "
            u"supported. in frmLayout.LayoutOpen"_s);
        row("count 0, any magic", "AU2", QByteArray("garbage\x01\0\0\x05\x07", 12), "");
        row("reading stops at the count", "AU1", lytHeader(251, 1, 0) + cone + QByteArray(37, '\xff'),
            "14@724,400 a0 w0");
    }
    void open()
    {
        QFETCH(QString, file);
        QFETCH(QByteArray, bytes);
        QFETCH(QString, objects);
        QFETCH(QString, problem);
        WriteFile(m_fx.layoutPath(file), bytes);
        auto session = m_fx.session(file);
        auto *doc = &session->document();
        ClearLoggedErrors(); // an unknown type has been reported by the background's loading
        QSignalSpy refusals(doc, &LayoutDocument::Refused);
        const bool logged = problem.contains(u" in "_s);
        QCOMPARE(session->LayoutOpen(), !logged);
        QCOMPARE(objectsText(*doc), objects);
        QCOMPARE(LoggedErrors(), logged ? QStringList{problem} : QStringList());
        QCOMPARE(refusals.count(), problem.startsWith(u"refused"_s) ? 1 : 0);
        if (refusals.count())
            QCOMPARE(int(refusals[0][0].value<LayoutDocument::Refusal>()), problem.mid(8).toInt());
    }

    // One object saved from a 1000 x 800 layout over a longer file: its record, then the
    // old file's tail; the file keeps its permissions. (Unsaved work following the history
    // is the window suite's savedPointIsTheCleanPoint.)
    void save_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QList<int>>("object"); // id, x, y, angle, width
        QTest::addColumn<QByteArray>("record");
        auto row = [](const char *name, const char *type, const QList<int> &object,
                      const QByteArray &record) {
            QTest::newRow(name) << QString::fromLatin1(type) + u"_s.lyt"_s << object << record;
        };
        row("AU1 centre", "AU1", {14, 500, 400, 0, 0}, lytRecord(-1024, -13224, 255, 0, 29, 128));
        row("AU2", "AU2", {14, 250, 600, -90, 0}, lytRecord(-2846, -11870, 255, 0, 29, 64));
        row("angle 180 as 255", "AU1", {14, 500, 400, 180, 0}, lytRecord(-1024, -13224, 255, 0, 29, 255));
        row("angle -180 as 0", "AU1", {14, 500, 400, -180, 0}, lytRecord(-1024, -13224, 255, 0, 29, 0));
        row("start sets laps 1", "AU1", {0, 500, 400, 0, 0}, lytRecord(-1024, -13224, 255, 128, 0, 128));
        row("checkpoint 3, odd width", "AU1", {4, 500, 400, 0, 7},
            lytRecord(-1024, -13224, 255, 143, 0, 128));
        row("angle 1 rounds to 129", "AU1", {14, 500, 400, 1, 0}, lytRecord(-1024, -13224, 255, 0, 29, 129));
        row("route checker writes its number", "BL3", {59, 500, 400, 90, 0},
            lytRecord(-3622, 1370, 35, 20, 255, 0));
    }
    void save()
    {
        QFETCH(QString, file);
        QFETCH(QList<int>, object);
        QFETCH(QByteArray, record);
        QByteArray old;
        for (int i = 0; i < 100; ++i)
            old += char(i);
        const QString path = WriteFile(m_fx.layoutPath(file), old);
#ifndef Q_OS_WIN // Windows files have no owner and group bits to keep
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup);
#endif
        auto session = m_fx.session(file);
        addRecorded(*session, object[0], object[1], object[2], object[3], object[4]);
        QVERIFY(session->LayoutSave(false));
        QCOMPARE(ReadAll(path).toHex(' '),
                 (lytHeader(251, 1, object[0] == 0 ? 1 : 0) + record + old.mid(20)).toHex(' '));
#ifndef Q_OS_WIN
        QCOMPARE(int(QFile::permissions(path) & 0x7077), 0x6040);
#endif
    }

    // A count above 255, and a kind-60 object (only restore brings one in) repeating the
    // flags written before it.
    void countHighByteAndRepeatedFlags()
    {
        auto session = m_fx.session(u"AU1_many.lyt"_s);
        auto *doc = &session->document();
        for (int i = 0; i < 298; ++i)
            addObject(*doc, 14, 1 + i, 10);
        addObject(*doc, 59, 5, 5);
        addObject(*doc, 1, 6, 6, 0, 12);
        DocumentState s = doc->snapshot();
        auto unknown = std::make_shared<nrmlObject>();
        unknown->setID(60);
        unknown->Update(0);
        s.objects.push_back(unknown);
        doc->restore(s);
        addObject(*doc, 59, 8, 8);
        doc->setLaps(200);
        doc->setRevision(17);
        QVERIFY(session->LayoutSave(false));
        const QByteArray bytes = ReadAll(m_fx.layoutPath(u"AU1_many.lyt"_s));
        QCOMPARE(bytes.size(), 12 + 302 * 8);
        QCOMPARE(bytes.left(12), lytHeader(251, 302, 200));
        QByteArray last; // flags, index and heading of the last four records
        for (int i = 298; i < 302; ++i)
            last += bytes.mid(12 + 8 * i + 5, 3);
        QCOMPARE(last.toHex(' '), QByteArray("14 ff 00 98 00 80 98 c1 80 14 ff 01"));
    }

    // An untitled layout or Save As asks; the remembered folder then becomes as long as the
    // file's name less one. A name that does not begin with the type
    // would open as another type: Save As says so, and offers the dialog again with the
    // type in front, or saves it all the same.
    void saveAs_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("saveAs");
        QTest::addColumn<QStringList>("answers"); // file names chosen in turn; empty cancels
        QTest::addColumn<int>("question");        // 1: Yes, choose another name; 0: No, save anyway
        QTest::addColumn<QString>("saved");       // empty: nothing saved
        auto row = [](const char *tag, const char *name, bool saveAs, const QStringList &answers,
                      int question, const char *saved) {
            QTest::newRow(tag) << QString::fromLatin1(name) << saveAs << answers << question
                               << QString::fromLatin1(saved);
        };
        row("untitled asks", "AU1_untitled.lyt", false, {"AU1_chosen1.lyt"}, -1, "AU1_chosen1.lyt");
        row("save as asks", "AU1_named.lyt", true, {"AU1_chosen2.lyt"}, -1, "AU1_chosen2.lyt");
        row("named saves in place", "AU1_named.lyt", false, {}, -1, "AU1_named.lyt");
        row("untitled needs the exact tail", "AU1_untitled2.lyt", false, {}, -1, "AU1_untitled2.lyt");
        row("choose another name", "AU1_untitled.lyt", true, {"slalom.lyt", "AU1_slalom.lyt"}, 1,
            "AU1_slalom.lyt");
        row("save anyway", "AU1_untitled.lyt", true, {"slalom.lyt"}, 0, "slalom.lyt");
        row("then cancel", "AU1_untitled.lyt", true, {"AU2_x.lyt", ""}, 1, "");
        row("lower case is the type", "AU1_untitled.lyt", true, {"au1_low.lyt"}, -1, "au1_low.lyt");
    }
    void saveAs()
    {
        QFETCH(QString, name);
        QFETCH(bool, saveAs);
        QFETCH(QStringList, answers);
        QFETCH(int, question);
        QFETCH(QString, saved);
        QFile::remove(m_fx.layoutPath(name));
        options().SaveFolder = u"/start/here"_s;
        auto session = m_fx.session(name);
        addRecorded(*session, 14, 5, 5);
        for (const QString &a : answers)
            m_dialogs->saveAnswers << (a.isEmpty() ? a : m_fx.layoutPath(a));
        if (question >= 0)
            m_dialogs->answers << (question ? MsgResult::Yes : MsgResult::No);
        QCOMPARE(session->LayoutSave(saveAs), !saved.isEmpty());
        QCOMPARE(m_dialogs->messages.size(), question >= 0 ? 1 : 0);
        if (question >= 0)
            QCOMPARE(m_dialogs->messages[0].text, WrongTypeNameText(answers[0], u"AU1"_s));
        QCOMPARE(m_dialogs->saveRequests.size(), answers.size());
        if (answers.size() > 1) // proposed again beside the first choice, with the type in front
            QCOMPARE(QDir(m_dialogs->saveRequests[1].initialDir).filePath(m_dialogs->saveRequests[1].fileName),
                     QDir::fromNativeSeparators(m_fx.layoutPath(u"AU1_"_s + answers[0])));
        QCOMPARE(session->LayoutName(), saved.isEmpty() ? name : saved);
        QCOMPARE(session->Edited(), saved.isEmpty());
        QCOMPARE(options().SaveFolder, saved.isEmpty() || answers.isEmpty()
                                           ? u"/start/here"_s
                                           : session->FileName().left(saved.size() - 1));
    }

    // XY2 has no map: without objects the header is all there is to write; with one the
    // header goes out and the object does not, and the layout stays unsaved.
    void unsupportedTypeSave()
    {
        LayoutSession session;
        session.setFileName(m_fx.layoutPath(u"XY2_s.lyt"_s));
        LayoutDocument &doc = session.document();
        const QByteArray old(40, 'o');
        WriteFile(session.FileName(), old);
        QVERIFY(session.LayoutSave(false));
        QCOMPARE(ReadAll(session.FileName()), lytHeader(251, 0, 0) + old.mid(12));

        session.record(u"restore"_s, 0, [&] {
            DocumentState s = doc.snapshot();
            s.objects.push_back(std::make_shared<nrmlObject>());
            doc.restore(s);
        });
        QVERIFY(!session.LayoutSave(false));
        QCOMPARE(m_dialogs->messages.value(0).text, u"XY2\r\n"_s + Lang(164));
        QCOMPARE(ReadAll(session.FileName()), lytHeader(251, 1, 0) + old.mid(12));
        QVERIFY(session.Edited());
    }
};

QTEST_MAIN(TestLayoutSession)
#include "tst_layoutsession.moc"
