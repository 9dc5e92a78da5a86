#include "base/Language.h"
#include "base/Runtime.h"
#include "catalogue/ObjectKinds.h"
#include "support/TestSupport.h"

#include <QtTest>

using namespace Qt::StringLiterals;

class TestCatalogue : public QObject {
    Q_OBJECT
private slots:
    void initTestCase()
    {
        for (int slot : LanguageSlots())
            SetLang(slot, DefaultLanguageString(slot));
        TempAppFolder app(false);
        FillCatalogue();
    }

    void fileIndexLookup_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<bool>("au");
        QTest::addColumn<int>("kind");
        QTest::newRow("BL 33 is cone red ptr, the first match") << 33 << false << 17;
        QTest::newRow("AU 52 is chalk left") << 52 << true << 7;
        QTest::newRow("BL 82 is the ramp") << 82 << false << 54;
        QTest::newRow("AU 0 is tyres white, not the start") << 0 << true << 31;
        QTest::newRow("BL 0 is cone1") << 0 << false << 29;
        QTest::newRow("unmatched AU 100") << 100 << true << 60;
        QTest::newRow("193 never maps at AU") << 193 << true << 60;
        QTest::newRow("255 is not an ordinary index") << 255 << true << 60;
    }
    void fileIndexLookup()
    {
        QFETCH(int, index);
        QFETCH(bool, au);
        QFETCH(int, kind);
        QCOMPARE(KindForFileIndex(static_cast<uint8_t>(index), au), kind);
    }

    // Every ordinary kind available at a site reads back as itself.
    void indicesRoundTrip()
    {
        for (bool au : {true, false})
            for (int k = Kind::FirstOrdinary; k <= Kind::LastOrdinary; ++k) {
                const uint8_t idx = FileIndexForKind(k, au);
                if (idx == NotAtSite)
                    continue;
                QCOMPARE(KindForFileIndex(idx, au), k);
            }
        for (int k = 0; k <= 4; ++k)
            QCOMPARE(int(FileIndexForKind(k, true)), 0);
        for (int k = 55; k <= 59; ++k)
            QCOMPARE(int(FileIndexForKind(k, false)), 255);
    }

    // At an AU site these ordinary kinds are hidden (the BL site's show in the palette's
    // rows), and the unique kinds already placed are unavailable.
    void allowedAndAvailable()
    {
        UpdateAllowedAvailable(u"AU1"_s, true, false, true, false, true); // start, checkpoints 1-3, finish
        QList<int> hidden, available;
        for (int k = Kind::FirstOrdinary; k <= Kind::LastOrdinary; ++k)
            if (!ObjectKinds()[k].Allowed)
                hidden << k;
        for (int k = 0; k <= 4; ++k) // start, finish, checkpoint 1, 2, 3
            available << ObjectKinds()[k].Available;
        QCOMPARE(hidden, (QList<int>{29, 30, 35, 36, 38, 39, 54}));
        QCOMPARE(available, (QList<int>{0, 0, -1, 0, -1}));
    }

    void missingPictureFallsBack()
    {
        TempAppFolder app(false);
        AddItem(60, -1, u"index error!?"_s, 193, 193, u"b0rk!"_s, 255, 255, 255, false);
        QVERIFY(ObjectKinds()[60].HasImage && ObjectKinds()[60].Image.Width() > 0);
        AddItem(55, 5, u"r"_s, 255, 255, QString(), 255, 255, 255, false);
        QVERIFY(!ObjectKinds()[55].HasImage && ObjectKinds()[55].Image.isNull());
    }

    void fillRegistersEveryKind()
    {
        TempAppFolder app(true);
        FillCatalogue();
        for (int k = 0; k < KindCount; ++k)
            QVERIFY2(ObjectKinds()[k].HasImage == (k != 55 && k != 59), qPrintable(QString::number(k)));
        // Kinds sharing a picture get their own tinted copies.
        QVERIFY(ObjectKinds()[15].Image.Handle() != ObjectKinds()[19].Image.Handle());
    }

    // Nothing else reaches the catalogue with a kind past its end.
    void outOfRangeKind()
    {
        int raised = 0;
        try {
            ObjectKindAt(61);
        } catch (const rt::Error &e) {
            raised = e.number();
        }
        QCOMPARE(raised, 9);
    }
};

QTEST_MAIN(TestCatalogue)
#include "tst_catalogue.moc"
