#include "base/ErrorLog.h"
#include "catalogue/ObjectKinds.h"
#include "core/LayoutObject.h"
#include "imaging/ColorMatrix.h"
#include "imaging/cGraphics.h"
#include "support/TestSupport.h"

#include <QRegularExpression>
#include <QtTest>

using namespace Qt::StringLiterals;

class TestLayoutObject : public QObject {
    Q_OBJECT
    std::unique_ptr<TempAppFolder> m_app;

    static std::unique_ptr<varnoObject> make(int kind, int16_t angle = 0, uint8_t width = 0)
    {
        auto o = CreateObjectForKind(kind);
        o->setID(static_cast<int16_t>(kind));
        o->Update(angle, width);
        return o;
    }
    // The object drawn at (at, at) on a clear side x side canvas.
    static cBitmap drawn(varnoObject &o, int side, int at, float zoom, bool nearest = false)
    {
        cBitmap canvas;
        canvas.CreateFromScan0(side, side);
        {
            cGraphics g;
            g.GetGraphicsContext(canvas);
            if (nearest)
                g.SetInterpolationMode(InterpolationModeNearestNeighbor);
            o.Draw(at, at, g, zoom, nullptr);
        }
        return canvas;
    }

private slots:
    void initTestCase()
    {
        // Known pictures: an opaque 40 x 20 red block for the start, a 23 x 5 white bar
        // for the lines and a 14 x 14 marshall.
        m_app = std::make_unique<TempAppFolder>(false);
        for (const auto &[name, size, colour] : {std::tuple{"start", QSize(40, 20), QColor(200, 0, 0)},
                                                 std::tuple{"line", QSize(23, 5), QColor(Qt::white)},
                                                 std::tuple{"marshall", QSize(14, 14), QColor(Qt::yellow)}}) {
            QImage img(size, QImage::Format_ARGB32);
            img.fill(colour);
            img.save(m_app->file(u"objects/%1.png"_s.arg(QLatin1String(name))));
        }
        FillCatalogue();
    }
    void cleanupTestCase() { m_app.reset(); }

    void angleNormalisation_data()
    {
        QTest::addColumn<int>("angle");
        QTest::addColumn<int>("stored");
        QTest::newRow("-181") << -181 << 179;
        QTest::newRow("181") << 181 << -179;
        QTest::newRow("180 stays") << 180 << 180;
        QTest::newRow("-180 stays") << -180 << -180;
        QTest::newRow("541 only once") << 541 << 181;
        QTest::newRow("-541 only once") << -541 << -181;
        QTest::newRow("0") << 0 << 0;
    }
    void angleNormalisation()
    {
        QFETCH(int, angle);
        QFETCH(int, stored);
        for (int kind : {0, 1, 56}) {
            auto o = make(kind, static_cast<int16_t>(angle), 10);
            QCOMPARE(int(o->Angle()), stored);
        }
    }

    void updateErrorsAreLogged_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("angle");
        QTest::addColumn<QString>("logged");
        QTest::newRow("angle + 360 overflows") << 0 << 32500 << "6: Overflow in nrmlObject.varnoObject_Update";
        QTest::newRow("kind outside the catalogue")
            << 61 << 0 << "9: Subscript out of range in ctrlObject.varnoObject_Update";
    }
    void updateErrorsAreLogged()
    {
        QFETCH(int, kind);
        QFETCH(int, angle);
        QFETCH(QString, logged);
        ScriptedDialogs dlg;
        ClearLoggedErrors();
        auto o = kind == 61 ? std::unique_ptr<varnoObject>(new ctrlObject) : CreateObjectForKind(kind);
        o->setID(static_cast<int16_t>(kind));
        o->Update(static_cast<int16_t>(angle), 10);
        QCOMPARE(LoggedErrors(), QStringList{logged});
        QCOMPARE(dlg.messages.size(), 1);
    }

    void pictureSizes_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("imageSize");
        QTest::newRow("start: 40 + 32") << 0 << 0 << 72;
        QTest::newRow("finish width 10: 228 + 32") << 1 << 10 << 260;
        QTest::newRow("checkpoint width 4: round(91.2) + 32") << 2 << 4 << 123;
        QTest::newRow("restricted area: width x 23") << 55 << 10 << 230;
        QTest::newRow("route checker width 3") << 59 << 3 << 69;
    }
    void pictureSizes()
    {
        QFETCH(int, kind);
        QFETCH(int, width);
        QFETCH(int, imageSize);
        auto o = make(kind, 0, static_cast<uint8_t>(width));
        QCOMPARE(int(o->ImageSize()), imageSize);
        QCOMPARE(int(o->Width()), kind == 0 ? 0 : width);
    }

    void restrictedLineIsFiveHigh()
    {
        // A control object given a restricted-area kind gets the thin 5-pixel bar.
        ctrlObject o;
        o.setID(55);
        QImage bar(10, 30, QImage::Format_ARGB32);
        bar.fill(Qt::white);
        ObjectKinds()[55].Image.setImage(bar);
        o.Update(0, 10);
        ObjectKinds()[55].Image = cBitmap();
        QCOMPARE(o.image().Width(), 228 + 32);
        // Rows 2 above and below the centre are covered, 4 above are not.
        const int c = o.image().Width() / 2;
        QVERIFY(o.OnPixel(c, c + 2) && o.OnPixel(c, c - 2));
        QVERIFY(!o.OnPixel(c, c - 4));
    }

    void keys()
    {
        ctrlObject c;
        QVERIFY(c.Key().isEmpty());
        c.setID(3);
        QCOMPARE(c.Key(), u"checkpoint 2"_s);
        c.setID(7);
        QCOMPARE(c.Key(), u"checkpoint 2"_s);
        c.setID(1);
        QCOMPARE(c.Key(), u"finish"_s);

        nrmlObject n;
        const QRegularExpression pattern(u"^\\d{6}-\\d{6}\\d+(\\.\\d+)?$"_s);
        QVERIFY2(pattern.match(n.Key()).hasMatch(), qPrintable(n.Key()));
        n.setID(0);
        QCOMPARE(n.Key(), u"start"_s);

        QSet<QString> seen;
        for (int i = 0; i < 2000; ++i)
            seen.insert(mrshObject().Key());
        QCOMPARE(seen.size(), 2000);
    }

    // Only a route checker keeps its number; each circle kind has its pen.
    void routeIndex()
    {
        mrshObject checker, area;
        checker.setID(59);
        area.setID(56);
        checker.setRouteIndex(4);
        area.setRouteIndex(4);
        QCOMPARE((QList<int>{checker.RouteIndex(), area.RouteIndex()}), (QList<int>{4, 0}));
        QCOMPARE((QList<uint>{checker.PenColour(), area.PenColour()}), (QList<uint>{0xFF008000u, 0xFFFF0000u}));
    }

    void rotationTurnsThePicture()
    {
        // The 40 x 20 start turned by 90 stands upright: covered above the centre by 15,
        // clear to the side by 15.
        auto o = make(0, 90);
        const int c = o->image().Width() / 2;
        QVERIFY(o->OnPixel(c, c - 15));
        QVERIFY(!o->OnPixel(c - 15, c));
        auto flat = make(0, 0);
        QVERIFY(flat->OnPixel(c - 15, c));
        QVERIFY(!flat->OnPixel(c, c - 15));
        QVERIFY(!flat->OnPixel(-1, 0));
    }

    void drawing_data()
    {
        QTest::addColumn<float>("zoom");
        QTest::addColumn<int>("expectedPixels");
        QTest::newRow("zoom 1000 still one pixel") << 1000.0f << 1;
        QTest::newRow("zoom 0 is one pixel") << 0.0f << 1;
        QTest::newRow("zoom 4: 72/4 = 18 square, 40x20 block is 10 x 5") << 4.0f << 50;
    }
    void drawing()
    {
        QFETCH(float, zoom);
        QFETCH(int, expectedPixels);
        auto o = make(0);
        const cBitmap canvas = drawn(*o, 60, 30, zoom, true);
        int opaque = 0;
        for (int y = 0; y < 60; ++y)
            for (int x = 0; x < 60; ++x)
                opaque += canvas.GetPixelAlpha(x, y) > 128;
        QCOMPARE(opaque, expectedPixels);
    }

    void selectedIsHighlighted()
    {
        auto o = make(0);
        auto paintCentre = [&](bool selected) {
            o->setSelected(selected);
            return QColor(drawn(*o, 80, 40, 1.0f).Handle().pixel(40, 40));
        };
        QCOMPARE(paintCentre(false), QColor(200, 0, 0));
        // 0.55 added to every channel: (200, 0, 0) becomes (255, 140, 140).
        const QColor lit = paintCentre(true);
        QVERIFY2(lit.red() == 255 && qAbs(lit.green() - 140) <= 1 && qAbs(lit.blue() - 140) <= 1,
                 qPrintable(lit.name()));
    }

    void circles_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<bool>("selected");
        QTest::addColumn<QColor>("colour");
        QTest::newRow("route checker") << 59 << false << QColor(0, 255, 0);
        QTest::newRow("route checker selected") << 59 << true << QColor(0x90, 0xEE, 0x90);
        QTest::newRow("restricted") << 55 << false << QColor(255, 0, 0);
        QTest::newRow("restricted selected") << 55 << true << QColor(0xFF, 0xC0, 0xCB);
    }
    void circles()
    {
        QFETCH(int, kind);
        QFETCH(bool, selected);
        QFETCH(QColor, colour);
        // Width 10 at zoom 4: diameter 230 / 4 = 57.5 -> 58, pen 7; the ring's middle lies
        // about 25 pixels from the centre.
        auto o = make(kind, 0, 10);
        o->setSelected(selected);
        const cBitmap canvas = drawn(*o, 100, 50, 4.0f);
        QCOMPARE(QColor(canvas.Handle().pixel(50 + 25, 50)), colour);
        QCOMPARE(canvas.GetPixelAlpha(50, 50), uint8_t(0));
        QCOMPARE(canvas.GetPixelAlpha(50 + 31, 50), uint8_t(0));
    }
};

QTEST_MAIN(TestLayoutObject)
#include "tst_layoutobject.moc"
