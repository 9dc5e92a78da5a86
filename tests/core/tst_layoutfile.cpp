#include "DocumentFixture.h"

#include "app/ErrorLog.h"
#include "app/Language.h"
#include "core/Runtime.h"
#include "core/SafeWrite.h"

#include <QFile>
#include <QGuiApplication>
#include <QProcess>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QtTest>
#include <cmath>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {
// The maps as the file format describes them, written out again here so that the
// tests do not take the program's own table on trust: file = p / size * scale + offset,
// and reading adds readOffset before dividing.
struct Axis {
    double scale, offset, readOffset;
};
struct Maps {
    Axis x, y;
};
Maps mapsFor(const QString &type, int revision)
{
    if (type == u"AU1"_s)
        return {{4577, -3312, 3312}, {-8255, -9096, 9096}};
    if (type == u"AU2"_s)
        return {{3012, -3599, 3599}, {-3012, -9611, 9611}};
    if (type == u"AU3"_s || type == u"AU4"_s) // read back displaced, on purpose
        return {{1650, -1678, 1678}, {-17807, -11387, -11387}};
    if (revision <= 250)
        return {{3602, -5705, 5705}, {-5790, 4375, -4375}};
    return {{3320, -5282, 5282}, {-5360, 4050, -4050}};
}
int toFileUnits(const Axis &a, int p, int size)
{
    return int(std::nearbyint(double(p) / size * a.scale + a.offset));
}
// -1000000 when the 16-bit sum overflows.
int fromFileUnits(const Axis &a, int f, int size)
{
    const int sum = f + int(a.readOffset);
    if (sum < -32768 || sum > 32767)
        return -1000000;
    return int(std::nearbyint(sum / a.scale * size));
}

struct Obj {
    int id, x, y, angle, width;
    bool operator==(const Obj &o) const
    {
        return id == o.id && x == o.x && y == o.y && angle == o.angle && width == o.width;
    }
};
QString toString(const QList<Obj> &list)
{
    QStringList s;
    for (const Obj &o : list)
        s << u"%1@%2,%3 a%4 w%5"_s.arg(o.id).arg(o.x).arg(o.y).arg(o.angle).arg(o.width);
    return s.join(u"; "_s);
}
QList<Obj> objectsOf(const LayoutDocument &doc)
{
    QList<Obj> out;
    for (const varnoObject &o : doc.Objects())
        out << Obj{o.ID(), o.X(), o.Y(), o.Angle(), o.Width()};
    return out;
}

QByteArray recordAt(const QByteArray &file, int i)
{
    return file.mid(12 + 8 * i, 8);
}

// The child side of the crash test: save a layout and die at the chosen stage.
int g_crashStage = -1;
void crashHook(SafeWriteStage stage, const QString &)
{
    if (int(stage) == g_crashStage)
        _exit(42);
}
int crashChild()
{
    SetAppPath(qEnvironmentVariable("VARNO_CRASH_APP"));
    options().AU1 = qEnvironmentVariable("VARNO_CRASH_BG");
    LoadLanguage();
    LayoutDocument doc;
    doc.setFileName(qEnvironmentVariable("VARNO_CRASH_FILE"));
    if (!doc.LayoutLoadBG() || !doc.LayoutOpen())
        return 3;
    addObject(doc, 14, 300, 300, 45);
    g_crashStage = qEnvironmentVariableIntValue("VARNO_CRASH_STAGE");
    setSafeWriteHook(crashHook);
    doc.LayoutSave(false);
    return 0;
}

SafeWriteStage g_failStage = SafeWriteStage::Opened;
void failHook(SafeWriteStage stage, const QString &)
{
    if (stage == g_failStage)
        rt::raise(rt::DiskFull);
}
} // namespace

class TestLayoutFile : public QObject {
    Q_OBJECT
    std::unique_ptr<DocumentFixture> m_fx;
    ScriptedDialogs *m_dialogs = nullptr;

    QString writeLayout(const QString &name, const QByteArray &bytes)
    {
        return WriteFile(m_fx->layoutPath(name), bytes);
    }
    std::unique_ptr<LayoutDocument> open(const QString &name, bool *ok = nullptr)
    {
        auto doc = m_fx->document(name);
        const bool r = doc->LayoutOpen();
        if (ok)
            *ok = r;
        return doc;
    }

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
        setSafeWriteHook(nullptr);
    }
    void cleanup()
    {
        delete m_dialogs;
        m_dialogs = nullptr;
    }
    void cleanupTestCase() { m_fx.reset(); }

    // One hand-built record read into a 1000 x 800 layout.
    void decode_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<int>("revision");
        QTest::addColumn<QByteArray>("record");
        QTest::addColumn<QString>("expected"); // object, or "refused N", or the logged error
        // (0, -13224) is (724, 400) on AU1.
        QTest::newRow("checkpoint 1 from flags 137") << u"AU1_d.lyt"_s << 0 << lytRecord(0, -13224, 255, 137, 0, 128)
                                                     << u"2@724,400 a0 w4"_s;
        QTest::newRow("start") << u"AU1_d.lyt"_s << 0 << lytRecord(0, -13224, 0, 128, 0, 0) << u"0@724,400 a-180 w0"_s;
        QTest::newRow("finish") << u"AU1_d.lyt"_s << 0 << lytRecord(0, -13224, 0, 148, 0, 64) << u"1@724,400 a-90 w10"_s;
        QTest::newRow("checkpoint 3") << u"AU1_d.lyt"_s << 0 << lytRecord(0, -13224, 0, 143, 7, 192)
                                      << u"4@724,400 a90 w6"_s;
        QTest::newRow("restricted marshall") << u"AU1_d.lyt"_s << 0 << lytRecord(0, -13224, 0, 149, 255, 255)
                                             << u"56@724,400 a179 w10"_s;
        QTest::newRow("restricted point right") << u"AU1_d.lyt"_s << 0 << lytRecord(0, -13224, 0, 139, 255, 1)
                                                << u"58@724,400 a-179 w4"_s;
        QTest::newRow("route checker: heading read as an angle") << u"AU1_d.lyt"_s << 0
                                                                 << lytRecord(0, -13224, 0, 20, 255, 7)
                                                                 << u"59@724,400 a-170 w10"_s;
        QTest::newRow("AU cone red") << u"AU1_d.lyt"_s << 0 << lytRecord(0, -13224, 0, 0, 29, 128)
                                     << u"14@724,400 a0 w0"_s;
        QTest::newRow("BL index 33 is the first match") << u"BL3_d.lyt"_s << 251 << lytRecord(-3622, 0, 35, 0, 33, 128)
                                                        << u"17@500,604 a0 w0"_s;
        QTest::newRow("BL revision 250 map") << u"BL3_d.lyt"_s << 250 << lytRecord(-3622, 0, 35, 0, 82, 128)
                                             << u"54@578,604 a0 w0"_s;
        QTest::newRow("BL revision 0 uses the first map") << u"bl3_d.lyt"_s << 0 << lytRecord(-3622, 0, 35, 0, 82, 128)
                                                          << u"54@578,604 a0 w0"_s;
        QTest::newRow("BL revision 252 is not converted") << u"BL3_d.lyt"_s << 252 << lytRecord(-3622, 0, 35, 0, 82, 128)
                                                          << u"refused 163"_s;
        QTest::newRow("unknown index is kind 60, not allowed") << u"AU1_d.lyt"_s << 0
                                                               << lytRecord(0, -13224, 0, 0, 200, 128)
                                                               << u"refused 162"_s;
        QTest::newRow("index 193 maps to no kind") << u"AU1_d.lyt"_s << 0 << lytRecord(0, -13224, 0, 0, 193, 128)
                                                   << u"refused 162"_s;
        QTest::newRow("AU-only kind on BL") << u"BL3_d.lyt"_s << 251 << lytRecord(-3622, 0, 0, 0, 1, 128)
                                            << u"30@500,604 a0 w0"_s;
        QTest::newRow("AU3 displaced onto the layout") << u"AU3_d.lyt"_s << 0 << lytRecord(-1513, 0, 255, 0, 29, 128)
                                                       << u"14@100,512 a0 w0"_s;
        QTest::newRow("AU4 displaced out of it") << u"AU4_d.lyt"_s << 0 << lytRecord(-1513, -13168, 255, 0, 29, 128)
                                                 << u"refused 163"_s;
        QTest::newRow("AU3 sum overflows") << u"AU3_d.lyt"_s << 0 << lytRecord(-1513, -30000, 255, 0, 29, 128)
                                           << u"6: Overflow in frmLayout.LayoutOpen"_s;
        QTest::newRow("control flags below 128") << u"AU1_d.lyt"_s << 0 << lytRecord(0, -13224, 0, 100, 0, 128)
                                                 << u"6: Overflow in frmLayout.LayoutOpen"_s;
        QTest::newRow("AU1 x overflows") << u"AU1_d.lyt"_s << 0 << lytRecord(32000, -13224, 0, 0, 29, 128)
                                         << u"6: Overflow in frmLayout.LayoutOpen"_s;
    }
    void decode()
    {
        QFETCH(QString, file);
        QFETCH(int, revision);
        QFETCH(QByteArray, record);
        QFETCH(QString, expected);
        writeLayout(file, lytHeader(revision, 1, 0, 3) + record);
        auto doc = m_fx->document(file);
        QSignalSpy spy(doc.get(), &LayoutDocument::Message);
        const bool ok = doc->LayoutOpen();
        QCOMPARE(int(doc->Revision()), revision);
        if (expected.startsWith(u"refused"_s)) {
            QVERIFY(ok);
            QCOMPARE(doc->Objects().Count(), 0);
            QCOMPARE(spy.count(), 1);
            QCOMPARE(spy[0][3].toString(), Lang(expected.mid(8).toInt()));
        } else if (expected.contains(u" in "_s)) {
            QVERIFY(!ok);
            QCOMPARE(LoggedErrors(), QStringList{expected});
            QCOMPARE(doc->Objects().Count(), 0);
        } else {
            QVERIFY(ok);
            QCOMPARE(toString(objectsOf(*doc)), expected);
            QVERIFY(!doc->Edited());
            QVERIFY(LoggedErrors().isEmpty());
        }
    }

    void revisionAbove251ReusesPositions()
    {
        // Every record of a BL3 file with revision 252 stays at (0, 0), outside.
        writeLayout(u"BL3_r.lyt"_s, lytHeader(252, 3, 0, 0) + lytRecord(-3622, 0, 35, 0, 82, 128)
                                        + lytRecord(-3000, 100, 35, 0, 82, 128) + lytRecord(0, 0, 35, 128, 0, 0));
        auto doc = m_fx->document(u"BL3_r.lyt"_s);
        QSignalSpy spy(doc.get(), &LayoutDocument::Message);
        QVERIFY(doc->LayoutOpen());
        QCOMPARE(spy.count(), 3);
        QCOMPARE(doc->Objects().Count(), 0);
    }

    void openFailures_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<int>("objects");
        QTest::addColumn<QString>("logged");
        const QByteArray rec = lytRecord(0, -13224, 0, 0, 29, 128);
        QTest::newRow("empty file") << u"AU1_e.lyt"_s << QByteArray() << false << 0
                                    << u"62: Input past end of file in frmLayout.LayoutOpen"_s;
        QTest::newRow("short header") << u"AU1_e.lyt"_s << QByteArray("LFSLYT\0", 7) << false << 0
                                      << u"62: Input past end of file in frmLayout.LayoutOpen"_s;
        QTest::newRow("negative count") << u"AU1_e.lyt"_s << lytHeader(251, 1, 128, 0) + rec << false << 0
                                        << u"6: Overflow in frmLayout.LayoutOpen"_s;
        QTest::newRow("truncated record keeps the others") << u"AU1_e.lyt"_s << lytHeader(251, 3, 0, 0) + rec + rec
                                                                                  + rec.left(4)
                                                           << false << 2
                                                           << u"62: Input past end of file in frmLayout.LayoutOpen"_s;
        QTest::newRow("count beyond the file") << u"AU1_e.lyt"_s << lytHeader(251, 255, 127, 0) + rec << false << 1
                                               << u"62: Input past end of file in frmLayout.LayoutOpen"_s;
        QTest::newRow("unknown type with objects") << u"XY1_e.lyt"_s << lytHeader(251, 1, 0, 0) + rec << false << 0
                                                   << u"5: XY1_e.lyt\r\n\r\nUnsupported layout. Currently only AU1, AU2, "
                                                      u"AU3, AU4 and BL3 are supported. in frmLayout.LayoutOpen"_s;
        QTest::newRow("unknown type without objects") << u"XY1_e.lyt"_s << lytHeader(251, 0, 0, 0) << true << 0
                                                      << QString();
        QTest::newRow("count 0, any magic") << u"AU2_e.lyt"_s << QByteArray("garbage\x01\0\0\x05\x07", 12) << true << 0
                                            << QString();
        QTest::newRow("old tail ignored") << u"AU1_e.lyt"_s << lytHeader(251, 1, 0, 0) + rec + QByteArray(37, '\xff')
                                          << true << 1 << QString();
    }
    void openFailures()
    {
        QFETCH(QString, file);
        QFETCH(QByteArray, bytes);
        QFETCH(bool, ok);
        QFETCH(int, objects);
        QFETCH(QString, logged);
        writeLayout(file, bytes);
        bool result = false;
        auto doc = open(file, &result);
        QCOMPARE(result, ok);
        QCOMPARE(doc->Objects().Count(), objects);
        QCOMPARE(LoggedErrors(), logged.isEmpty() ? QStringList() : QStringList{logged});
        // Every logged error was also shown.
        int sorry = 0;
        for (const auto &m : m_dialogs->messages)
            sorry += m.title == u"Sorry :("_s;
        QCOMPARE(sorry, logged.isEmpty() ? 0 : 1);
    }

    void openHeaderFields()
    {
        writeLayout(u"AU2_h.lyt"_s, lytHeader(250, 0, 0, 9));
        auto doc = open(u"AU2_h.lyt"_s);
        QCOMPARE(int(doc->Laps()), 9);
        QCOMPARE(int(doc->Revision()), 250);
        QCOMPARE(doc->LayoutType(), u"AU2"_s);
        // A start in the file sets Laps to 1 on its way in, whatever the header says.
        writeLayout(u"AU2_h.lyt"_s, lytHeader(250, 1, 0, 9) + lytRecord(-2846, -11870, 0, 128, 0, 0));
        doc = open(u"AU2_h.lyt"_s);
        QCOMPARE(int(doc->Laps()), 1);
        QVERIFY(doc->HasStart());
    }

    void missingFile()
    {
        auto doc = m_fx->document(u"AU1_missing.lyt"_s);
        QVERIFY(!doc->LayoutOpen());
        QCOMPARE(m_dialogs->messages.size(), 1);
        QCOMPARE(m_dialogs->messages[0].text, m_fx->layoutPath(u"AU1_missing.lyt"_s) + u"\r\n\r\nNot found!?"_s);
        QCOMPARE(m_dialogs->messages[0].icon, MsgIcon::Information);
        QVERIFY(LoggedErrors().isEmpty());
    }

    void encode_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<int>("revision");
        QTest::addColumn<QList<int>>("object"); // id, x, y, angle, width
        QTest::addColumn<QByteArray>("record");
        QTest::newRow("AU1 centre") << u"AU1_c.lyt"_s << 0 << QList<int>{14, 500, 500, 0, 0}
                                    << lytRecord(-1024, -13224, 255, 0, 29, 128);
        QTest::newRow("AU1 far corner") << u"AU1_c.lyt"_s << 0 << QList<int>{14, 1000, 1000, 90, 0}
                                        << lytRecord(1265, -17351, 255, 0, 29, 192);
        QTest::newRow("AU2") << u"AU2_c.lyt"_s << 0 << QList<int>{14, 250, 750, -90, 0}
                             << lytRecord(-2846, -11870, 255, 0, 29, 64);
        QTest::newRow("AU3") << u"AU3_c.lyt"_s << 0 << QList<int>{14, 100, 100, 1, 0}
                             << lytRecord(-1513, -13168, 255, 0, 29, 129);
        QTest::newRow("BL3 revision 251") << u"BL3_c.lyt"_s << 251 << QList<int>{17, 500, 500, 0, 0}
                                          << lytRecord(-3622, 1370, 35, 0, 33, 128);
        QTest::newRow("BL3 revision 250") << u"BL3_c.lyt"_s << 250 << QList<int>{17, 500, 500, 0, 0}
                                          << lytRecord(-3904, 1480, 35, 0, 33, 128);
        QTest::newRow("angle 180 as 255") << u"AU1_c.lyt"_s << 0 << QList<int>{14, 500, 500, 180, 0}
                                          << lytRecord(-1024, -13224, 255, 0, 29, 255);
        QTest::newRow("angle -180 as 0") << u"AU1_c.lyt"_s << 0 << QList<int>{14, 500, 500, -180, 0}
                                         << lytRecord(-1024, -13224, 255, 0, 29, 0);
        QTest::newRow("start") << u"AU1_c.lyt"_s << 0 << QList<int>{0, 500, 500, 0, 0}
                               << lytRecord(-1024, -13224, 255, 128, 0, 128);
        QTest::newRow("finish") << u"AU1_c.lyt"_s << 0 << QList<int>{1, 500, 500, 0, 0}
                                << lytRecord(-1024, -13224, 255, 148, 0, 128);
        QTest::newRow("checkpoint 1 width 4") << u"AU1_c.lyt"_s << 0 << QList<int>{2, 500, 500, 0, 4}
                                              << lytRecord(-1024, -13224, 255, 137, 0, 128);
        QTest::newRow("checkpoint 3 odd width") << u"AU1_c.lyt"_s << 0 << QList<int>{4, 500, 500, 0, 7}
                                                << lytRecord(-1024, -13224, 255, 143, 0, 128);
        QTest::newRow("restricted point right") << u"AU1_c.lyt"_s << 0 << QList<int>{58, 500, 500, 0, 2}
                                                << lytRecord(-1024, -13224, 255, 135, 255, 128);
        QTest::newRow("route checker writes its number") << u"BL3_c.lyt"_s << 251 << QList<int>{59, 500, 500, 90, 0}
                                                         << lytRecord(-3622, 1370, 35, 20, 255, 0);
    }
    void encode()
    {
        QFETCH(QString, file);
        QFETCH(int, revision);
        QFETCH(QList<int>, object);
        QFETCH(QByteArray, record);
        QFile::remove(m_fx->layoutPath(file));
        DocumentFixture sized(1000, 1000);
        auto doc = sized.document(file);
        doc->setRevision(uint8_t(revision));
        addObject(*doc, object[0], object[1], object[2], object[3], object[4]);
        QSignalSpy named(doc.get(), &LayoutDocument::LayoutNameChanged);
        QVERIFY(doc->LayoutSave(false));
        QVERIFY(!doc->Edited());
        QCOMPARE(named.count(), 1);
        const QByteArray bytes = ReadAll(sized.layoutPath(file));
        QCOMPARE(bytes.size(), 20);
        QCOMPARE(bytes.left(12), lytHeader(revision == 250 ? 250 : 251, 1, 0, object[0] == 0 ? 1 : 0));
        QCOMPARE(recordAt(bytes, 0).toHex(' '), record.toHex(' '));
        QVERIFY(m_dialogs->saveRequests.isEmpty());
    }

    void headerAndFlagsCarriedOver()
    {
        auto doc = m_fx->document(u"AU1_many.lyt"_s);
        for (int i = 0; i < 298; ++i)
            addObject(*doc, 14, 1 + i, 10);
        addObject(*doc, 59, 5, 5);
        addObject(*doc, 1, 6, 6, 0, 12);
        // A kind-60 object only comes in through restore; it repeats the flags before it.
        DocumentState s = doc->snapshot();
        auto unknown = std::make_shared<nrmlObject>();
        unknown->setID(60);
        unknown->setX(7);
        unknown->setY(7);
        unknown->Update(0);
        s.objects.push_back(unknown);
        doc->restore(s);
        addObject(*doc, 59, 8, 8);
        doc->setLaps(200);
        doc->setRevision(17);
        QVERIFY(doc->LayoutSave(false));
        QCOMPARE(int(doc->Revision()), 251);
        const QByteArray bytes = ReadAll(m_fx->layoutPath(u"AU1_many.lyt"_s));
        QCOMPARE(bytes.left(12), lytHeader(251, 302 % 256, 1, 200));
        QCOMPARE(bytes.size(), 12 + 302 * 8);
        QCOMPARE(recordAt(bytes, 298).mid(5).toHex(), QByteArray("14ff00")); // route checker 0
        QCOMPARE(recordAt(bytes, 299).mid(5, 2).toHex(), QByteArray("9800")); // finish, width 12
        QCOMPARE(recordAt(bytes, 300).mid(5, 2).toHex(), QByteArray("98c1")); // flags repeated, index 193
        QCOMPARE(recordAt(bytes, 301).mid(5).toHex(), QByteArray("14ff01")); // route checker 1
    }

    void saveAsDialog_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("saveAs");
        QTest::addColumn<bool>("asks");
        QTest::newRow("untitled asks") << u"AU1_untitled.lyt"_s << false << true;
        QTest::newRow("save as asks") << u"AU1_named.lyt"_s << true << true;
        QTest::newRow("named saves in place") << u"AU1_named.lyt"_s << false << false;
        QTest::newRow("untitled needs the exact tail") << u"AU1_untitled2.lyt"_s << false << false;
    }
    void saveAsDialog()
    {
        QFETCH(QString, name);
        QFETCH(bool, saveAs);
        QFETCH(bool, asks);
        const QString folderBefore = u"/start/here"_s;
        options().SaveFolder = folderBefore;
        auto doc = m_fx->document(name);
        addObject(*doc, 14, 5, 5);
        const QString chosen = m_fx->layoutPath(u"AU1_chosen.lyt"_s);
        QFile::remove(chosen);
        m_dialogs->saveAnswers << chosen;
        QVERIFY(doc->LayoutSave(saveAs));
        QCOMPARE(m_dialogs->saveRequests.size(), asks ? 1 : 0);
        if (asks) {
            const FileDialogRequest &r = m_dialogs->saveRequests[0];
            QCOMPARE(r.filter, u"Layout file (*.lyt)|*.lyt|All files (*.*)|*.*"_s);
            QCOMPARE(r.filterIndex, 1);
            QCOMPARE(r.defaultExt, u"lyt"_s);
            QCOMPARE(r.initialDir, folderBefore);
            QCOMPARE(doc->LayoutName(), u"AU1_chosen.lyt"_s);
            QCOMPARE(doc->FileName(), chosen);
            QVERIFY(QFile::exists(chosen));
            // The remembered folder is as long as the file name less one.
            QCOMPARE(options().SaveFolder, chosen.left(QStringLiteral("AU1_chosen.lyt").size() - 1));
        } else {
            QCOMPARE(options().SaveFolder, folderBefore);
            QVERIFY(QFile::exists(m_fx->layoutPath(name)));
        }
    }

    void saveAsCancelAndNoRemember()
    {
        auto doc = m_fx->document(u"AU1_untitled.lyt"_s);
        QFile::remove(m_fx->layoutPath(u"AU1_untitled.lyt"_s));
        addObject(*doc, 14, 5, 5);
        QVERIFY(!doc->LayoutSave(false)); // cancelled
        QVERIFY(doc->Edited());
        QVERIFY(!QFile::exists(m_fx->layoutPath(u"AU1_untitled.lyt"_s)));
        options().RememberSaveFolder = false;
        options().SaveFolder = u"/kept"_s;
        m_dialogs->saveAnswers << m_fx->layoutPath(u"AU1_other.lyt"_s);
        QVERIFY(doc->LayoutSave(true));
        QCOMPARE(options().SaveFolder, u"/kept"_s);
        options().RememberSaveFolder = true;
    }

    void unsupportedTypeSave()
    {
        LayoutDocument doc;
        doc.setFileName(m_fx->layoutPath(u"XY2_s.lyt"_s));
        const QByteArray old(40, 'o');
        WriteFile(doc.FileName(), old);
        QVERIFY(doc.LayoutSave(false)); // no objects: nothing stops it
        QCOMPARE(ReadAll(doc.FileName()), lytHeader(251, 0, 0, 0) + old.mid(12));

        DocumentState s = doc.snapshot();
        auto cone = std::make_shared<nrmlObject>();
        cone->setID(14);
        cone->Update(0);
        s.objects.push_back(cone);
        s.edited = true;
        doc.restore(s);
        QSignalSpy named(&doc, &LayoutDocument::LayoutNameChanged);
        QVERIFY(!doc.LayoutSave(false));
        QCOMPARE(m_dialogs->messages.size(), 1);
        QCOMPARE(m_dialogs->messages[0].title, u"Save Error"_s);
        QCOMPARE(m_dialogs->messages[0].icon, MsgIcon::Error);
        QCOMPARE(m_dialogs->messages[0].text, u"XY2\r\n"_s + Lang(164));
        // The header went out, the object did not; the old tail is still there.
        QCOMPARE(ReadAll(doc.FileName()), lytHeader(251, 1, 0, 0) + old.mid(12));
        QVERIFY(doc.Edited());
        QCOMPARE(named.count(), 0);
    }

    void saveKeepsOldTailAndPermissions()
    {
        const QString path = m_fx->layoutPath(u"AU1_tail.lyt"_s);
        QByteArray old;
        for (int i = 0; i < 100; ++i)
            old += char(i);
        WriteFile(path, old);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup);
        auto doc = m_fx->document(u"AU1_tail.lyt"_s);
        addObject(*doc, 14, 500, 400);
        QVERIFY(doc->LayoutSave(false));
        const QByteArray now = ReadAll(path);
        QCOMPARE(now.size(), 100);
        QCOMPARE(now.mid(20), old.mid(20));
        QCOMPARE(now.left(12), lytHeader(251, 1, 0, 0));
        QCOMPARE(QFile::permissions(path) & 0x7077,
                 QFile::Permissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup) & 0x7077);
    }

    void failedSaveKeepsOldFile_data()
    {
        QTest::addColumn<int>("stage");
        QTest::newRow("opened") << int(SafeWriteStage::Opened);
        QTest::newRow("half written") << int(SafeWriteStage::HalfWritten);
        QTest::newRow("written") << int(SafeWriteStage::Written);
    }
    void failedSaveKeepsOldFile()
    {
        QFETCH(int, stage);
        const QString path = m_fx->layoutPath(u"AU1_fail.lyt"_s);
        const QByteArray old = lytHeader(251, 1, 0, 4) + lytRecord(0, -13224, 255, 0, 29, 128) + "tail";
        WriteFile(path, old);
        auto doc = open(u"AU1_fail.lyt"_s);
        addObject(*doc, 14, 10, 10);
        addObject(*doc, 14, 20, 20);
        g_failStage = SafeWriteStage(stage);
        setSafeWriteHook(failHook);
        QVERIFY(!doc->LayoutSave(false));
        setSafeWriteHook(nullptr);
        QCOMPARE(ReadAll(path), old);
        QCOMPARE(LoggedErrors(), QStringList{u"61: Disk full in frmLayout.LayoutSave"_s});
        QVERIFY(doc->Edited());
        QCOMPARE(QDir(QFileInfo(path).absolutePath()).entryList({u"AU1_fail.lyt*"_s}, QDir::Files).size(), 1);
    }

    void killedSaveKeepsOldFile_data()
    {
        QTest::addColumn<int>("stage");
        QTest::addColumn<bool>("replaced");
        QTest::newRow("opened") << int(SafeWriteStage::Opened) << false;
        QTest::newRow("half written") << int(SafeWriteStage::HalfWritten) << false;
        QTest::newRow("written") << int(SafeWriteStage::Written) << false;
        QTest::newRow("replaced") << int(SafeWriteStage::Replaced) << true;
    }
    void killedSaveKeepsOldFile()
    {
        QFETCH(int, stage);
        QFETCH(bool, replaced);
        const QString path = m_fx->layoutPath(u"AU1_kill.lyt"_s);
        QByteArray old = lytHeader(251, 3, 0, 4);
        for (int i = 0; i < 3; ++i)
            old += lytRecord(-100 * i, -13224, 255, 0, 29, 128);
        WriteFile(path, old);

        QProcess child;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(u"VARNO_CRASH_STAGE"_s, QString::number(stage));
        env.insert(u"VARNO_CRASH_APP"_s, AppPath());
        env.insert(u"VARNO_CRASH_BG"_s, options().AU1);
        env.insert(u"VARNO_CRASH_FILE"_s, path);
        child.setProcessEnvironment(env);
        child.start(QCoreApplication::applicationFilePath(), {});
        QVERIFY(child.waitForFinished(60000));
        QCOMPARE(child.exitCode(), 42);

        const QByteArray now = ReadAll(path);
        if (!replaced) {
            QCOMPARE(now, old);
        } else {
            // The same edit done here without interruption gives the bytes to expect.
            WriteFile(m_fx->layoutPath(u"AU1_kill2.lyt"_s), old);
            auto same = open(u"AU1_kill2.lyt"_s);
            addObject(*same, 14, 300, 300, 45);
            QVERIFY(same->LayoutSave(false));
            QCOMPARE(now.size(), 12 + 4 * 8);
            QCOMPARE(now, ReadAll(m_fx->layoutPath(u"AU1_kill2.lyt"_s)));
        }
        // Whatever the child left, the layout still opens.
        bool ok = false;
        auto doc = open(u"AU1_kill.lyt"_s, &ok);
        QVERIFY(ok);
        QCOMPARE(doc->Objects().Count(), replaced ? 4 : 3);
    }

    // Random layouts of every type, saved and opened again, against the maps above.
    void roundTrip_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<int>("revision");
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::newRow("AU1") << u"AU1"_s << 0 << 1000 << 800;
        QTest::newRow("AU2 odd size") << u"AU2"_s << 0 << 733 << 911;
        QTest::newRow("AU3") << u"AU3"_s << 0 << 600 << 5600;
        QTest::newRow("AU4") << u"AU4"_s << 251 << 600 << 5600;
        QTest::newRow("BL3 250") << u"BL3"_s << 250 << 1220 << 1700;
        QTest::newRow("BL3 251") << u"BL3"_s << 251 << 1000 << 800;
    }
    void roundTrip()
    {
        QFETCH(QString, type);
        QFETCH(int, revision);
        QFETCH(int, width);
        QFETCH(int, height);
        DocumentFixture fx(width, height);
        const bool au = type.startsWith(u"AU"_s);
        QList<int> ordinary;
        for (int k = 5; k <= 54; ++k)
            if ((au ? KindDefinitions()[k].indexAU : KindDefinitions()[k].indexBL) != 193)
                ordinary << k;
        const Maps maps = mapsFor(type, revision);

        for (quint32 seed = 1; seed <= 8; ++seed) {
            QRandomGenerator rng(seed * 7919 + quint32(width));
            const QString name = type + u"_rt%1.lyt"_s.arg(seed);
            QFile::remove(fx.layoutPath(name));
            auto doc = fx.document(name);
            doc->setRevision(uint8_t(revision));
            QList<int> ids;
            for (int id = 0; id <= 4; ++id)
                if (rng.bounded(2))
                    ids << id;
            const int n = 5 + int(rng.bounded(60));
            for (int i = 0; i < n; ++i)
                ids.insert(int(rng.bounded(ids.size() + 1)),
                           rng.bounded(4) == 0 ? 55 + int(rng.bounded(5)) : ordinary[rng.bounded(ordinary.size())]);
            for (int id : ids) {
                const bool hasWidth = (id >= 1 && id <= 4) || id >= 55;
                addObject(*doc, id, 1 + int(rng.bounded(width)), 1 + int(rng.bounded(height)),
                          int(rng.bounded(361)) - 180, hasWidth ? 2 * (1 + int(rng.bounded(31))) : 0);
            }
            QCOMPARE(doc->Objects().Count(), ids.size());
            const int laps = int(rng.bounded(256));
            doc->setLaps(uint8_t(laps));
            QVERIFY(doc->LayoutSave(false));

            // What reading must give, record by record.
            QList<Obj> expected;
            int refusals = 0;
            bool overflow = false;
            int route = 0;
            bool start = false;
            for (const varnoObject &o : doc->Objects()) {
                const int fx16 = toFileUnits(maps.x, o.X(), width);
                const int fy16 = toFileUnits(maps.y, o.Y(), height);
                const int x = fromFileUnits(maps.x, fx16, width);
                const int y = fromFileUnits(maps.y, fy16, height);
                if (x == -1000000 || y == -1000000) {
                    overflow = true;
                    break;
                }
                if (x < 1 || x > width || y < 1 || y > height) {
                    ++refusals;
                    continue;
                }
                const int heading = o.ID() == 59 ? route++ : (o.Angle() == 180 ? 255 : int(std::nearbyint((o.Angle() + 180) / 1.40625)));
                expected << Obj{o.ID(), x, y, int(std::nearbyint(heading * 1.40625)) - 180, o.Width()};
                start = start || o.ID() == 0;
            }

            ClearLoggedErrors();
            auto back = fx.document(name);
            QSignalSpy spy(back.get(), &LayoutDocument::Message);
            QCOMPARE(back->LayoutOpen(), !overflow);
            QCOMPARE(toString(objectsOf(*back)), toString(expected));
            QCOMPARE(spy.count(), refusals);
            QCOMPARE(LoggedErrors(), overflow ? QStringList{u"6: Overflow in frmLayout.LayoutOpen"_s} : QStringList());
            QCOMPARE(int(back->Laps()), start ? 1 : laps);
            QCOMPARE(int(back->Revision()), revision == 250 ? 250 : 251);
            if (!type.startsWith(u"AU3"_s) && !type.startsWith(u"AU4"_s))
                QCOMPARE(expected.size(), ids.size()); // nothing lost where the maps agree
        }
    }

    void garbageNeverCrashes()
    {
        QRandomGenerator rng(99);
        for (int i = 0; i < 300; ++i) {
            QByteArray bytes(int(rng.bounded(400)), Qt::Uninitialized);
            for (char &c : bytes)
                c = char(rng.bounded(256));
            if (bytes.size() >= 10 && rng.bounded(2))
                bytes[9] = char(rng.bounded(4)); // plausible counts too
            const QString name = (i % 2 ? u"BL3_g.lyt"_s : u"AU1_g.lyt"_s);
            writeLayout(name, bytes);
            auto doc = open(name);
            QVERIFY(doc->Objects().Count() <= qMax(0, (int(bytes.size()) - 12) / 8));
        }
    }
};

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsSet("VARNO_CRASH_STAGE")) {
        QGuiApplication app(argc, argv);
        return crashChild();
    }
    QGuiApplication app(argc, argv);
    TestLayoutFile test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_layoutfile.moc"
