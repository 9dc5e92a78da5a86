#include "base/Runtime.h"
#include "view/ViewGeometry.h"

#include <QtTest>

class TestViewGeometry : public QObject {
    Q_OBJECT

    static ViewGeometry make(int cw, int ch, int bw, int bh, int span)
    {
        ViewGeometry g;
        g.setClientSize(cw, ch);
        g.setBackground(bw, bh, span);
        return g;
    }

private slots:
    void zoomClampAndFit_data()
    {
        QTest::addColumn<int>("clientWidth");
        QTest::addColumn<int>("bgWidth");
        QTest::addColumn<float>("value");
        QTest::addColumn<float>("expected");
        QTest::newRow("0.01 clamps up") << 800 << 2000 << 0.01f << 0.03125f;
        QTest::newRow("20 clamps down") << 800 << 2000 << 20.0f << 8.0f;
        QTest::newRow("fit width 800 on 2000") << 800 << 2000 << 87.0f << 0.4f;
        QTest::newRow("fit width 40000 on 2000 clamps") << 40000 << 2000 << 87.0f << 8.0f;
        QTest::newRow("fit height 600 on 1200") << 800 << 2000 << 72.0f << 0.5f;
        QTest::newRow("no background: 87 is a plain value") << 800 << 0 << 87.0f << 8.0f;
    }
    void zoomClampAndFit()
    {
        QFETCH(int, clientWidth);
        QFETCH(int, bgWidth);
        QFETCH(float, value);
        QFETCH(float, expected);
        ViewGeometry g = make(clientWidth, 600, bgWidth, bgWidth ? 1200 : 0, 1630);
        int updates = 0;
        g.onUpdated = [&] { ++updates; };
        g.setZoom(value);
        QCOMPARE(g.Zoom(), expected);
        QCOMPARE(updates, 1);
    }

    void wholePictureIsCentred()
    {
        ViewGeometry g = make(1000, 800, 580, 6260, 580);
        g.setZoom(1.0f);
        // The width fits: column 1 starts at (1000 - 580) / 2, and the bar has no range.
        QCOMPARE(g.ViewOffsetX(), 210);
        QVERIFY(g.bar(0).maximum <= 0);
        QCOMPARE(g.ScrollX(), 0);
        QCOMPARE(g.ViewOffsetY(), 0);
        QCOMPARE(g.bar(1).maximum, 6260 - 800);
        QCOMPARE(g.bar(1).largeStep, 800);
        int32_t x = 1, y = 1;
        g.layoutToView(x, y);
        QCOMPARE(x, 210);
    }

    void transformsAreInverse_data()
    {
        QTest::addColumn<float>("zoom");
        QTest::newRow("1") << 1.0f;
        QTest::newRow("3.3") << 3.3f;
        QTest::newRow("8") << 8.0f;
    }
    void transformsAreInverse()
    {
        QFETCH(float, zoom);
        ViewGeometry g = make(1280, 800, 1630, 2940, 1630);
        g.setZoom(zoom);
        g.setScroll(0, 300);
        g.setScroll(1, 1000);
        for (int32_t lx = 250; lx < 800; lx += 37)
            for (int32_t ly = 950; ly < 1400; ly += 41) {
                int32_t x = lx, y = ly;
                g.layoutToView(x, y);
                g.viewToLayout(x, y);
                QCOMPARE(x, lx);
                QCOMPARE(y, ly);
            }
    }

    void zoomKeepsTheMiddle()
    {
        ViewGeometry g = make(800, 600, 1630, 2940, 1630);
        g.setZoom(1.0f);
        g.centreOn(700, 1500);
        int32_t before_x = 400, before_y = 300;
        g.viewToLayout(before_x, before_y);
        g.setZoom(4.0f);
        int32_t after_x = 400, after_y = 300;
        g.viewToLayout(after_x, after_y);
        QVERIFY(qAbs(after_x - before_x) <= 1);
        QVERIFY(qAbs(after_y - before_y) <= 1);
    }

    void objectScale()
    {
        // Objects are drawn from pictures four times the background's resolution.
        ViewGeometry g = make(800, 600, 1630, 2940, 1630);
        g.setZoom(1.0f);
        QCOMPARE(g.ObjectScale(), 4.0f);
        g.setObjectZoom(200);
        QCOMPARE(g.ObjectScale(), 2.0f);
        // A background drawn at twice the usual resolution halves the divisor.
        ViewGeometry big = make(800, 600, 3260, 5880, 1630);
        big.setZoom(1.0f);
        QCOMPARE(big.BackgroundScale(), 2.0f);
        QCOMPARE(big.ObjectScale(), 2.0f);
    }

    void modifiedWheel_data()
    {
        QTest::addColumn<bool>("up");
        QTest::addColumn<int>("key");
        QTest::addColumn<float>("expected");
        QTest::newRow("shift up doubles") << true << 16 << 2.0f;
        QTest::newRow("ctrl down halves") << false << 17 << 0.5f;
        QTest::newRow("alt is ignored") << true << 18 << 1.0f;
        QTest::newRow("high word ignored") << true << 0x10011 << 2.0f;
    }
    void modifiedWheel()
    {
        QFETCH(bool, up);
        QFETCH(int, key);
        QFETCH(float, expected);
        ViewGeometry g = make(800, 600, 1630, 2940, 1630);
        g.setZoom(1.0f);
        g.modMouseScroll(up, key);
        QCOMPARE(g.Zoom(), expected);
    }

    void scrollIsClamped()
    {
        ViewGeometry g = make(800, 600, 1630, 2940, 1630);
        g.setZoom(1.0f);
        g.centreOn(1, 1);
        QCOMPARE(g.ScrollX(), 0);
        g.centreOn(5000, 5000);
        QCOMPARE(g.ScrollX(), 1630 - 800);
        QCOMPARE(g.ScrollY(), 2940 - 600);
    }
};

QTEST_GUILESS_MAIN(TestViewGeometry)
#include "tst_viewgeometry.moc"
