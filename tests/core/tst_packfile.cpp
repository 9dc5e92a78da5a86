#include "support/DocumentFixture.h"

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {
QString packPath(const QString &name)
{
    return AppPath() + u"packs"_s + QDir::separator() + name;
}
} // namespace

class TestPackFile : public DocumentTest {
    Q_OBJECT

private slots:

    // The save dialog comes back until the name carries the layout's site.
    void writeNameRule_data()
    {
        QTest::addColumn<QString>("layout");
        QTest::addColumn<QStringList>("answers");
        QTest::addColumn<QString>("written"); // empty when nothing is written
        QTest::newRow("lower-case site") << u"AU1_p.lyt"_s << QStringList{u"au_a.pack"_s} << u"au_a.pack"_s;
        QTest::newRow("upper-case extension, then a good name")
            << u"AU2_p.lyt"_s << QStringList{u"AU_b.PACK"_s, u"AU_c.pack"_s} << u"AU_c.pack"_s;
        QTest::newRow("other site, then cancel") << u"BL3_p.lyt"_s << QStringList{u"AU_d.pack"_s} << QString();
        QTest::newRow("no underscore, then a good name")
            << u"BL3_p.lyt"_s << QStringList{u"BLe.pack"_s, u"BL_f.pack"_s} << u"BL_f.pack"_s;
    }
    void writeNameRule()
    {
        QFETCH(QString, layout);
        QFETCH(QStringList, answers);
        QFETCH(QString, written);
        auto session = m_fx.session(layout);
        addObject(session->document(), 54, 100, 100, 0, 0, true);
        addObject(session->document(), 14, 100, 100, 0, 0, true); // one of the two is at the site
        session->document().SelectionUpdate();
        for (const QString &a : answers)
            m_dialogs->saveAnswers << packPath(a);
        session->PackWrite();
        const int refusals = int(answers.size()) - (written.isEmpty() ? 0 : 1);
        QCOMPARE(m_dialogs->saveRequests.size(), refusals + 1);
        QCOMPARE(m_dialogs->saveRequests[0].fileName, layout.left(2) + u"_untitled.pack"_s);
        QCOMPARE(m_dialogs->saveRequests[0].initialDir, AppPath() + u"packs"_s);
        QCOMPARE(m_dialogs->messages.size(), refusals);
        for (const auto &m : m_dialogs->messages)
            QCOMPARE(m.text, u"Pack file name must begin with AU_ or BL_ and end with .pack"_s);
        for (const QString &a : answers)
            QCOMPARE(QFile::exists(packPath(a)), a == written);
    }

    // Selected objects relative to the selection's corner, the box's size in the header;
    // written over a longer pack, the old file's tail stays behind the new records.
    void writeBytes()
    {
        QByteArray old = packHeader(0, 0, 5);
        for (int i = 0; i < 5; ++i)
            old += packRecord(18, i, i, 0, 0);
        WriteFile(packPath(u"AU_bytes.pack"_s), old);
        auto session = m_fx.session(u"AU1_bytes.lyt"_s);
        auto *doc = &session->document();
        addObject(*doc, 14, 300, 200, 45, 0, true);
        addObject(*doc, 14, 10, 10, 0, 0, false);
        addObject(*doc, 1, 250, 260, -90, 6, true);
        addObject(*doc, 59, 320, 230, 180, 0, true);
        doc->SelectionUpdate();
        m_dialogs->saveAnswers << packPath(u"AU_bytes.pack"_s);
        session->PackWrite();
        const QByteArray expected = packHeader(70, 60, 3) + packRecord(14, 50, 0, 45, 0) +
                                    packRecord(1, 0, 60, -90, 6) + packRecord(59, 70, 30, 180, 10) + old.mid(30);
        QCOMPARE(ReadAll(packPath(u"AU_bytes.pack"_s)).toHex(' '), expected.toHex(' '));
        QCOMPARE(errorOf([] { ReadPackFile(packPath(u"AU_absent.pack"_s)); }), 53);
    }

    // A pack dropped at a point onto a layout holding one selected marshall at (700, 700).
    void read_data()
    {
        QTest::addColumn<QByteArray>("pack");
        QTest::addColumn<QString>("layout");
        QTest::addColumn<QPoint>("at");
        QTest::addColumn<QString>("placed"); // now the selection
        QTest::addColumn<int>("refusals");
        QTest::addColumn<QString>("logged");
        auto row = [](const char *name, const QByteArray &pack, const char *layout, QPoint at, const char *placed,
                      int refusals, const QString &logged = {}) {
            QTest::newRow(name) << pack << QString::fromLatin1(layout) << at << QString::fromLatin1(placed)
                                << refusals << logged;
        };
        const QByteArray cone = packRecord(14, 0, 0, 0, 0);
        const QString overflow = u"6: Overflow in frmLayout.PackRead"_s;
        const QString pastEnd = u"62: Input past end of file in frmLayout.PackRead"_s;
        row("centred, halves toward zero", packHeader(5, 3, 2) + packRecord(14, 0, 0, 30, 0) + packRecord(2, 5, 3, 90, 0),
            "AU1.lyt", {100, 100}, "14@98,99 a30 w0; 2@103,102 a90 w10", 0);
        row("refused objects are skipped",
            packHeader(10, 0, 3) + packRecord(33, 0, 0, 0, 0) + packRecord(54, 5, 0, 0, 0) + packRecord(56, 10, 0, 0, 4),
            "BL3.lyt", {300, 300}, "54@300,300 a0 w0; 56@305,300 a0 w4", 1);
        row("outside the layout", packHeader(0, 0, 1) + cone, "AU1.lyt", {1001, 5}, "", 1);
        row("sum overflows", packHeader(0, 0, 2) + cone + packRecord(14, 32767, 0, 0, 0), "AU1.lyt", {10, 10},
            "14@10,10 a0 w0", 0, overflow);
        row("corner overflows", packHeader(4, 0, 1) + cone, "AU1.lyt", {-32767, 10}, "", 0, overflow);
        row("fewer records than counted", packHeader(0, 0, 3) + cone + packRecord(18, 1, 1, 0, 0) + QByteArray(5, '\0'),
            "AU1.lyt", {20, 20}, "14@20,20 a0 w0; 18@21,21 a0 w0", 0, pastEnd);
        row("reading stops at the count", packHeader(0, 0, 1) + cone + packRecord(18, 1, 1, 0, 0), "AU1.lyt", {20, 20},
            "14@20,20 a0 w0", 0);
        row("negative count", packHeader(1, 1, -3) + cone, "AU1.lyt", {20, 20}, "", 0);
        row("kind above 60", packHeader(0, 0, 2) + cone + packRecord(99, 0, 0, 0, 0), "AU1.lyt", {20, 20},
            "14@20,20 a0 w0", 0, u"9: Subscript out of range in frmLayout.PackRead"_s);
        row("header cut short", QByteArray("\x01\x00\x02", 3), "AU1.lyt", {20, 20}, "", 0, pastEnd);
    }
    void read()
    {
        QFETCH(QByteArray, pack);
        QFETCH(QString, layout);
        QFETCH(QPoint, at);
        QFETCH(QString, placed);
        QFETCH(int, refusals);
        QFETCH(QString, logged);
        WriteFile(packPath(u"AU_r.pack"_s), pack);
        auto session = m_fx.session(layout);
        auto *doc = &session->document();
        addObject(*doc, 56, 700, 700, 0, 0, true);
        QSignalSpy spy(doc, &LayoutDocument::Refused);
        session->PackRead(u"AU_r.pack"_s, int16_t(at.x()), int16_t(at.y()));
        QCOMPARE(objectsText(*doc, true), placed);
        QCOMPARE(doc->Objects().Count(), int(placed.count(u'@')) + 1);
        QCOMPARE(spy.count(), refusals);
        QCOMPARE(LoggedErrors(), logged.isEmpty() ? QStringList() : QStringList{logged});
    }

    // Whatever the bytes, never more objects than whole records in the file.
};

QTEST_MAIN(TestPackFile)
#include "tst_packfile.moc"
