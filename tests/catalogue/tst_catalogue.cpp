#include "base/Language.h"
#include "base/Runtime.h"
#include "catalogue/ObjectKinds.h"
#include "support/TestSupport.h"

#include <QtTest>

using namespace Qt::StringLiterals;

static QImage solid(int w, int h, QColor c)
{
    QImage img(w, h, QImage::Format_ARGB32);
    img.fill(c);
    return img;
}

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
        QTest::newRow("AU 51 is chalk right") << 51 << true << 8;
        QTest::newRow("BL 49 is chalk left") << 49 << false << 7;
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

    void paletteFit_data()
    {
        QTest::addColumn<int>("w");
        QTest::addColumn<int>("h");
        QTest::addColumn<float>("scale");
        QTest::addColumn<QPoint>("offset");
        QTest::newRow("48 wide unscaled") << 48 << 20 << 1.0f << QPoint(0, 14);
        QTest::newRow("small centred") << 11 << 11 << 1.0f << QPoint(19, 19);
        QTest::newRow("49 scaled to 48") << 49 << 10 << 48.0f / 49 << QPoint(0, 19);
        QTest::newRow("tall scaled by height") << 50 << 100 << 0.48f << QPoint(12, 0);
        QTest::newRow("square uses width") << 96 << 96 << 0.5f << QPoint(0, 0);
    }
    void paletteFit()
    {
        QFETCH(int, w);
        QFETCH(int, h);
        QFETCH(float, scale);
        QFETCH(QPoint, offset);
        TempAppFolder app(false);
        solid(w, h, Qt::red).save(app.file(u"objects/fit.png"_s));
        AddItem(14, 2, u"x"_s, 29, 22, u"fit"_s, 255, 255, 255, false);
        const ObjectKind &k = ObjectKinds()[14];
        QCOMPARE(k.Scale, scale);
        QCOMPARE(QPoint(k.OffsetX, k.OffsetY), offset);
        QCOMPARE(k.Image.Width(), w);
    }

    void tintAndMirror()
    {
        TempAppFolder app(false);
        QImage pic = solid(20, 10, Qt::white);
        for (int y = 0; y < 10; ++y)
            pic.setPixelColor(0, y, QColor(0, 0, 0, 0)); // a transparent left column
        pic.save(app.file(u"objects/pic.png"_s));
        AddItem(15, 2, u"x"_s, 34, 23, u"pic"_s, 255, 70, 41, true);
        const QImage img = ObjectKinds()[15].Image.Handle().convertToFormat(QImage::Format_ARGB32);
        QCOMPARE(QColor(img.pixel(5, 5)), QColor(255, 70, 41));
        // Mirrored: the clear column is now on the right.
        QVERIFY(qAlpha(img.pixel(19, 5)) == 0 && qAlpha(img.pixel(0, 5)) == 255);
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
        QCOMPARE(ObjectKinds()[14].Caption, u"cone red"_s);
        QCOMPARE(ObjectKinds()[60].Category, int16_t(-1));
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
