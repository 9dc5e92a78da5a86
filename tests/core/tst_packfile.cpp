#include "DocumentFixture.h"

#include "app/ErrorLog.h"
#include "app/Language.h"
#include "core/Runtime.h"

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {
QByteArray packRecord(int id, int x, int y, int angle, int width)
{
    return QByteArray(1, char(id)) + le16(x) + le16(y) + le16(angle) + char(width);
}
QByteArray packHeader(int w, int h, int count)
{
    return le16(w) + le16(h) + le16(count);
}
QStringList selected(const LayoutDocument &doc)
{
    QStringList out;
    for (const varnoObject &o : doc.Objects())
        if (o.Selected())
            out << u"%1@%2,%3 a%4 w%5"_s.arg(o.ID()).arg(o.X()).arg(o.Y()).arg(o.Angle()).arg(o.Width());
    return out;
}
} // namespace

class TestPackFile : public QObject {
    Q_OBJECT
    std::unique_ptr<DocumentFixture> m_fx;
    ScriptedDialogs *m_dialogs = nullptr;

    QString packPath(const QString &name) const { return AppPath() + u"packs"_s + QDir::separator() + name; }

private slots:
    void initTestCase()
    {
        m_fx = std::make_unique<DocumentFixture>(1000, 800);
        FillCatalogue();
    }
    void init()
    {
        m_dialogs = new ScriptedDialogs;
        ClearLoggedErrors();
    }
    void cleanup()
    {
        delete m_dialogs;
        m_dialogs = nullptr;
    }
    void cleanupTestCase() { m_fx.reset(); }

    void writeNameRule_data()
    {
        QTest::addColumn<QString>("layout");
        QTest::addColumn<QStringList>("answers");
        QTest::addColumn<int>("refusals");
        QTest::addColumn<QString>("written"); // empty when nothing is written
        QTest::newRow("lower-case site accepted") << u"AU1_p.lyt"_s << QStringList{u"au_test.pack"_s} << 0
                                                  << u"au_test.pack"_s;
        QTest::newRow("upper-case extension refused, then a good name")
            << u"AU2_p.lyt"_s << QStringList{u"AU_test.PACK"_s, u"AU_ok.pack"_s} << 1 << u"AU_ok.pack"_s;
        QTest::newRow("other site refused, then cancel") << u"BL3_p.lyt"_s << QStringList{u"AU_x.pack"_s} << 1
                                                         << QString();
        QTest::newRow("missing underscore refused") << u"BL3_p.lyt"_s << QStringList{u"BLx.pack"_s, u"BL_y.pack"_s}
                                                    << 1 << u"BL_y.pack"_s;
        QTest::newRow("cancel at once") << u"AU1_p.lyt"_s << QStringList{} << 0 << QString();
    }
    void writeNameRule()
    {
        QFETCH(QString, layout);
        QFETCH(QStringList, answers);
        QFETCH(int, refusals);
        QFETCH(QString, written);
        auto doc = m_fx->document(layout);
        const int id = layout.startsWith(u"BL"_s) ? 54 : 14;
        addObject(*doc, id, 100, 100, 0, 0, true);
        doc->SelectionUpdate();
        for (const QString &a : answers)
            m_dialogs->saveAnswers << packPath(a);
        doc->PackWrite();
        QCOMPARE(m_dialogs->saveRequests.size(), refusals + 1);
        const FileDialogRequest &r = m_dialogs->saveRequests[0];
        QCOMPARE(r.fileName, layout.left(2) + u"_untitled.pack"_s);
        QCOMPARE(r.initialDir, AppPath() + u"packs"_s);
        QCOMPARE(r.defaultExt, u"pack"_s);
        QCOMPARE(r.filter, u"Pack file (*.pack)|*.pack|All files (*.*)|*.*"_s);
        QCOMPARE(r.filterIndex, 1);
        QCOMPARE(m_dialogs->messages.size(), refusals);
        for (const auto &m : m_dialogs->messages)
            QCOMPARE(m.text, u"Pack file name must begin with AU_ or BL_ and end with .pack"_s);
        for (const QString &a : answers)
            QCOMPARE(QFile::exists(packPath(a)), a == written);
        for (const QString &a : answers)
            QFile::remove(packPath(a));
        QVERIFY(LoggedErrors().isEmpty());
    }

    void writeBytes()
    {
        auto doc = m_fx->document(u"AU1_bytes.lyt"_s);
        addObject(*doc, 14, 300, 200, 45, 0, true);
        addObject(*doc, 14, 10, 10, 0, 0, false);
        addObject(*doc, 1, 250, 260, -90, 6, true);
        addObject(*doc, 59, 320, 230, 180, 0, true);
        doc->SelectionUpdate();
        m_dialogs->saveAnswers << packPath(u"AU_bytes.pack"_s);
        doc->PackWrite();
        const QByteArray expected = packHeader(70, 60, 3) + packRecord(14, 50, 0, 45, 0) + packRecord(1, 0, 60, -90, 6)
            + packRecord(59, 70, 30, 180, 10);
        QCOMPARE(ReadAll(packPath(u"AU_bytes.pack"_s)).toHex(' '), expected.toHex(' '));
    }

    void shorterPackOverLongerKeepsTail()
    {
        const QString path = packPath(u"AU_tail.pack"_s);
        QByteArray old = packHeader(0, 0, 5);
        for (int i = 0; i < 5; ++i)
            old += packRecord(14, i, i, 0, 0);
        WriteFile(path, old);
        auto doc = m_fx->document(u"AU1_tail.lyt"_s);
        addObject(*doc, 18, 400, 400, 10, 0, true);
        doc->SelectionUpdate();
        m_dialogs->saveAnswers << path;
        doc->PackWrite();
        const QByteArray now = ReadAll(path);
        QCOMPARE(now.size(), old.size());
        QCOMPARE(now.left(14), packHeader(0, 0, 1) + packRecord(18, 0, 0, 10, 0));
        QCOMPARE(now.mid(14), old.mid(14));

        const PackData pack = ReadPackFile(path);
        QCOMPARE(pack.count, int16_t(1));
        QCOMPARE(pack.records.size(), 1);
        QVERIFY(pack.complete());

        auto target = m_fx->document(u"AU1_tail2.lyt"_s);
        target->PackRead(u"AU_tail.pack"_s, 600, 500);
        QCOMPARE(selected(*target), QStringList{u"18@600,500 a10 w0"_s});
    }

    void readPlaces_data()
    {
        QTest::addColumn<QByteArray>("pack");
        QTest::addColumn<QString>("layout");
        QTest::addColumn<int>("x");
        QTest::addColumn<int>("y");
        QTest::addColumn<QStringList>("placed");
        QTest::addColumn<int>("refusals");
        QTest::addColumn<QString>("logged");
        QTest::newRow("one object on the drop point") << packHeader(0, 0, 1) + packRecord(14, 0, 0, 30, 0)
                                                      << u"AU1_r.lyt"_s << 500 << 400
                                                      << QStringList{u"14@500,400 a30 w0"_s} << 0 << QString();
        QTest::newRow("centred, halves toward zero")
            << packHeader(5, 3, 2) + packRecord(14, 0, 0, 0, 0) + packRecord(2, 5, 3, 90, 0) << u"AU1_r.lyt"_s << 100
            << 100 << QStringList{u"14@98,99 a0 w0"_s, u"2@103,102 a90 w10"_s} << 0 << QString();
        QTest::newRow("refused objects are skipped")
            << packHeader(10, 0, 3) + packRecord(33, 0, 0, 0, 0) + packRecord(54, 5, 0, 0, 0) + packRecord(56, 10, 0, 0, 4)
            << u"BL3_r.lyt"_s << 300 << 300 << QStringList{u"54@300,300 a0 w0"_s, u"56@305,300 a0 w4"_s} << 1
            << QString();
        QTest::newRow("outside the layout") << packHeader(0, 0, 1) + packRecord(14, 0, 0, 0, 0) << u"AU1_r.lyt"_s
                                            << 1001 << 5 << QStringList{} << 1 << QString();
        QTest::newRow("sum overflows") << packHeader(0, 0, 2) + packRecord(14, 0, 0, 0, 0) + packRecord(14, 32767, 0, 0, 0)
                                       << u"AU1_r.lyt"_s << 10 << 10 << QStringList{u"14@10,10 a0 w0"_s} << 0
                                       << u"6: Overflow in frmLayout.PackRead"_s;
        QTest::newRow("corner overflows") << packHeader(4, 0, 1) + packRecord(14, 0, 0, 0, 0) << u"AU1_r.lyt"_s
                                          << -32767 << 10 << QStringList{} << 0 << u"6: Overflow in frmLayout.PackRead"_s;
        QTest::newRow("fewer records than counted")
            << packHeader(0, 0, 3) + packRecord(14, 0, 0, 0, 0) + packRecord(18, 1, 1, 0, 0) + QByteArray(5, '\0')
            << u"AU1_r.lyt"_s << 20 << 20 << QStringList{u"14@20,20 a0 w0"_s, u"18@21,21 a0 w0"_s} << 0
            << u"62: Input past end of file in frmLayout.PackRead"_s;
        QTest::newRow("kind above 60") << packHeader(0, 0, 2) + packRecord(14, 0, 0, 0, 0) + packRecord(99, 0, 0, 0, 0)
                                       << u"AU1_r.lyt"_s << 20 << 20 << QStringList{u"14@20,20 a0 w0"_s} << 0
                                       << u"9: Subscript out of range in frmLayout.PackRead"_s;
        QTest::newRow("header cut short") << QByteArray("\x01\x00\x02", 3) << u"AU1_r.lyt"_s << 20 << 20
                                          << QStringList{} << 0 << u"62: Input past end of file in frmLayout.PackRead"_s;
    }
    void readPlaces()
    {
        QFETCH(QByteArray, pack);
        QFETCH(QString, layout);
        QFETCH(int, x);
        QFETCH(int, y);
        QFETCH(QStringList, placed);
        QFETCH(int, refusals);
        QFETCH(QString, logged);
        WriteFile(packPath(u"AU_r.pack"_s), pack);
        auto doc = m_fx->document(layout);
        addObject(*doc, 56, 700, 700, 0, 0, true); // selected before: the drop replaces the selection
        QSignalSpy spy(doc.get(), &LayoutDocument::Message);
        doc->PackRead(u"AU_r.pack"_s, int16_t(x), int16_t(y));
        QCOMPARE(selected(*doc), placed);
        QCOMPARE(doc->Objects().Count(), placed.size() + 1);
        QCOMPARE(doc->Selection().size(), placed.size());
        QCOMPARE(spy.count(), refusals);
        QCOMPARE(LoggedErrors(), logged.isEmpty() ? QStringList() : QStringList{logged});
    }

    void readMissing()
    {
        auto doc = m_fx->document(u"AU1_m.lyt"_s);
        addObject(*doc, 14, 7, 7, 0, 0, true);
        doc->PackRead(u"AU_none.pack"_s, 5, 5);
        const QString text = u"packs"_s + QDir::separator() + u"AU_none.pack\r\n\r\nNot found!?"_s;
        QCOMPARE(LoggedErrors(), QStringList{text});
        QCOMPARE(m_dialogs->messages.size(), 1);
        QCOMPARE(m_dialogs->messages[0].title, u"Sorry :("_s);
        QCOMPARE(selected(*doc).size(), 1);
    }

    void writeThenReadRoundTrip()
    {
        auto doc = m_fx->document(u"BL3_rt.lyt"_s);
        QRandomGenerator rng(31);
        for (int i = 0; i < 40; ++i)
            addObject(*doc, i % 5 == 0 ? 57 : 49, 100 + int(rng.bounded(300)), 100 + int(rng.bounded(300)),
                      int(rng.bounded(361)) - 180, 2 * int(rng.bounded(10)), i % 3 != 0);
        doc->SelectionUpdate();
        const QStringList before = selected(*doc);
        const SelectionBox box = doc->SelectionBounds();
        m_dialogs->saveAnswers << packPath(u"BL_rt.pack"_s);
        doc->PackWrite();
        auto target = m_fx->document(u"BL3_rt2.lyt"_s);
        // Dropped where the box's centre was, everything lands where it came from.
        target->PackRead(u"BL_rt.pack"_s, int16_t(box.left + (box.right - box.left) / 2),
                         int16_t(box.top + (box.bottom - box.top) / 2));
        QStringList after = selected(*target);
        QCOMPARE(after, before);
        QVERIFY(LoggedErrors().isEmpty());
    }

    void readerLimits_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("records");
        QTest::addColumn<int>("error");
        QTest::newRow("empty") << QByteArray() << 0 << 0 << 62;
        QTest::newRow("five bytes") << QByteArray(5, '\1') << 0 << 0 << 62;
        QTest::newRow("negative count") << packHeader(1, 1, -3) + packRecord(14, 0, 0, 0, 0) << -3 << 0 << 0;
        QTest::newRow("count above records") << packHeader(1, 1, 4) + packRecord(14, 0, 0, 0, 0) + QByteArray(4, '\0')
                                             << 4 << 1 << 0;
        QTest::newRow("huge count, short file") << packHeader(1, 1, 32767) + packRecord(14, 0, 0, 0, 0) << 32767 << 1
                                                << 0;
    }
    void readerLimits()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(int, count);
        QFETCH(int, records);
        QFETCH(int, error);
        const QString path = WriteFile(packPath(u"AU_lim.pack"_s), bytes);
        try {
            const PackData p = ReadPackFile(path);
            QCOMPARE(error, 0);
            QCOMPARE(int(p.count), count);
            QCOMPARE(p.records.size(), records);
            QCOMPARE(p.complete(), records >= count);
        } catch (const rt::Error &e) {
            QCOMPARE(e.number(), error);
        }
        try {
            ReadPackFile(packPath(u"AU_absent.pack"_s));
            QFAIL("a missing pack was read");
        } catch (const rt::Error &e) {
            QCOMPARE(e.number(), 53);
        }
    }

    void garbageNeverCrashes()
    {
        QRandomGenerator rng(7);
        auto doc = m_fx->document(u"AU1_g.lyt"_s);
        for (int i = 0; i < 300; ++i) {
            QByteArray bytes(int(rng.bounded(200)), Qt::Uninitialized);
            for (char &c : bytes)
                c = char(rng.bounded(256));
            WriteFile(packPath(u"AU_g.pack"_s), bytes);
            const int before = doc->Objects().Count();
            doc->PackRead(u"AU_g.pack"_s, int16_t(rng.bounded(1200)), int16_t(rng.bounded(1000)));
            // Never more objects than whole records in the file.
            QVERIFY(doc->Objects().Count() - before <= qMax(0, (int(bytes.size()) - 6) / 8));
        }
    }
};

QTEST_MAIN(TestPackFile)
#include "tst_packfile.moc"
