// The palette without its widget: rows per site, hit-testing and the pack list.

#include "base/ErrorLog.h"
#include "base/Language.h"
#include "catalogue/ObjectKinds.h"
#include "catalogue/PackList.h"
#include "catalogue/PaletteRows.h"
#include "core/LayoutDocument.h"
#include "support/TestSupport.h"

#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

QList<int16_t> range16(int from, int to)
{
    QList<int16_t> out;
    for (int k = from; k <= to; ++k)
        out << int16_t(k);
    return out;
}

// Flags of the unique objects a layout holds: start, checkpoint 1, 2, 3, finish.
using Uniques = QList<bool>;
const Uniques None{false, false, false, false, false};

void activate(const QString &type, const Uniques &u = None)
{
    UpdateAllowedAvailable(type, u[0], u[1], u[2], u[3], u[4]);
}

QByteArray pack(int w, int h, const QList<QPoint> &at)
{
    QList<PackRecord> records;
    for (const QPoint &p : at)
        records.append(PackRecord{14, int16_t(p.x()), int16_t(p.y()), 0, 0});
    return PackBytes(int16_t(w), int16_t(h), records);
}

} // namespace

class TestPaletteModel : public QObject {
    Q_OBJECT
    std::optional<TempAppFolder> m_app;
    std::optional<ScriptedDialogs> m_dialogs;

private slots:
    void initTestCase()
    {
        for (int slot : LanguageSlots())
            SetLang(slot, DefaultLanguageString(slot));
        m_app.emplace(false);
        FillCatalogue();
    }
    void init()
    {
        m_dialogs.emplace();
        ClearLoggedErrors();
        activate(u"AU1"_s);
    }
    void cleanup() { m_dialogs.reset(); }

    void rowsPerSite_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<int>("panel");
        QTest::addColumn<QList<int16_t>>("kinds");
        QTest::newRow("general BL, with unique ones placed") << "BL3" << 0 << range16(0, 4);
        QTest::newRow("cones AU: cone1 and cone2 gone") << "AU1" << 2 << range16(14, 28);
        QTest::newRow("objects BL") << "BL3" << 4 << QList<int16_t>{38, 39, 45, 46, 47, 49, 50, 51, 52, 53, 54};
    }
    void rowsPerSite()
    {
        QFETCH(QString, type);
        QFETCH(int, panel);
        QFETCH(QList<int16_t>, kinds);
        activate(type, {true, true, false, true, true});
        QCOMPARE(PanelKinds(panel), kinds);
        QCOMPARE(PanelRowCount(panel, 3), int(kinds.size()));
    }

    void hitTesting_data()
    {
        QTest::addColumn<int>("panel");
        QTest::addColumn<int>("y");
        QTest::addColumn<int>("scroll");
        QTest::addColumn<int>("packs");
        QTest::addColumn<int>("item");
        QTest::newRow("rows counted without the top margin") << 0 << 51 << 0 << 0 << 0;
        QTest::newRow("below the last row") << 0 << 5 * 52 + 1 << 0 << 0 << -1;
        QTest::newRow("scroll and pointer add up") << 2 << 30 << 30 << 0 << 15;
        QTest::newRow("just above the list is row 0") << 0 << -20 << 0 << 0 << 0;
        QTest::newRow("second pack") << 6 << 60 << 0 << 2 << 2;
        QTest::newRow("past the packs") << 6 << 60 << 0 << 1 << -1;
    }
    void hitTesting()
    {
        QFETCH(int, panel);
        QFETCH(int, y);
        QFETCH(int, scroll);
        QFETCH(int, packs);
        QFETCH(int, item);
        QCOMPARE(int(PaletteHitItem(panel, y, scroll, packs)), item);
    }

    // A site lists its own packs, in any letter case, by name; the caption is the name
    // without the site's prefix and ".pack".
    void packListing()
    {
        TempAppFolder app(false);
        for (const QString &f : {u"AU_b.pack"_s, u"AU_a.pack"_s, u"au_lower.PACK"_s, u"BL_ramps.pack"_s,
                                 u"AU_notes.txt"_s, u"XAU_x.pack"_s, u"AU_.pack"_s})
            WriteFile(app.file(u"packs/"_s + f), pack(10, 10, {{0, 0}, {10, 10}}));
        auto listed = [](const QString &type) {
            activate(type);
            PackList list;
            QStringList out;
            if (!list.Refresh())
                out << u"refresh failed"_s;
            for (int i = 1; i <= list.Count(); ++i)
                out << list.Entry(i).FileName + u'=' + list.Entry(i).Caption;
            return out;
        };
        QCOMPARE(listed(u"AU1"_s), (QStringList{"AU_.pack=", "AU_a.pack=a", "AU_b.pack=b", "au_lower.PACK=lower"}));
        QCOMPARE(listed(u"BL3"_s), QStringList{"BL_ramps.pack=ramps"});
        QVERIFY(LoggedErrors().isEmpty());
    }

    // A pack that cannot be read ends the refresh with one report. Every pack stays listed;
    // only those read before it have a caption.
    void unreadablePack_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("error");
        QTest::newRow("fewer records than counted") << pack(10, 10, {{0, 0}, {10, 10}}).left(6 + 8)
                                                    << "62: Input past end of file";
        QTest::newRow("dot beyond 16 bits") << pack(1, 1, {{0, 0}, {30000, 0}}) << "6: Overflow";
    }
    void unreadablePack()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, error);
        TempAppFolder app(false);
        WriteFile(app.file(u"packs/AU_1good.pack"_s), pack(10, 10, {{0, 0}}));
        WriteFile(app.file(u"packs/AU_2bad.pack"_s), bytes);
        WriteFile(app.file(u"packs/AU_3after.pack"_s), pack(10, 10, {{0, 0}}));
        PackList list;
        QVERIFY(!list.Refresh());
        QCOMPARE((QStringList{list.Entry(1).Caption, list.Entry(2).Caption, list.Entry(3).FileName}),
                 (QStringList{u"1good"_s, QString(), u"AU_3after.pack"_s}));
        QCOMPARE(LoggedErrors(), QStringList{error + u" in Objectbar.RefreshPacks"_s});
        QCOMPARE(m_dialogs->messages.size(), 1);
        // The next refresh starts from nothing again.
        QFile::remove(app.file(u"packs/AU_2bad.pack"_s));
        QVERIFY(list.Refresh());
        QCOMPARE(list.Entry(2).Caption, u"3after"_s);
    }
};

QTEST_MAIN(TestPaletteModel)
#include "tst_palettemodel.moc"
