#include "view/ViewGeometry.h"

#include <QtTest>

class TestViewGeometry : public QObject {
    Q_OBJECT

    static ViewGeometry make(int cw, int ch, int bw, int bh, int span, float zoom = 1.0f)
    {
        ViewGeometry g;
        g.setClientSize(cw, ch);
        g.setBackground(bw, bh, span);
        g.setZoom(zoom);
        return g;
    }

private slots:
    // Key 0 sets the zoom to value; any other key turns the wheel with it, up for value > 0.
    void zoom_data()
    {
        QTest::addColumn<int>("bgWidth");
        QTest::addColumn<int>("key");
        QTest::addColumn<float>("value");
        QTest::addColumn<float>("expected");
        QTest::newRow("0.01 clamps up") << 2000 << 0 << 0.01f << 0.03125f;
        QTest::newRow("fit width 800 on 50 clamps") << 50 << 0 << 87.0f << 8.0f;
        QTest::newRow("no background: 87 is a plain value") << 0 << 0 << 87.0f << 8.0f;
        QTest::newRow("shift wheel up doubles") << 2000 << 16 << 1.0f << 2.0f;
        QTest::newRow("alt wheel is ignored") << 2000 << 18 << 1.0f << 1.0f;
        QTest::newRow("ctrl wheel down halves, key's high word ignored") << 2000 << 0x10011 << -1.0f << 0.5f;
    }
    void zoom()
    {
        QFETCH(int, bgWidth);
        QFETCH(int, key);
        QFETCH(float, value);
        QFETCH(float, expected);
        ViewGeometry g = make(800, 600, bgWidth, bgWidth ? 1200 : 0, 1630);
        if (key)
            g.modMouseScroll(value > 0, key);
        else
            g.setZoom(value);
        QCOMPARE(g.Zoom(), expected);
    }

    void scrollRangesAndCentring()
    {
        // The width fits: column 1 starts at (1000 - 580) / 2 and the bar has no range.
        ViewGeometry g = make(1000, 800, 580, 6260, 580);
        QCOMPARE(g.ViewOffsetX(), 210);
        QVERIFY(g.bar(0).maximum <= 0);
        QCOMPARE(g.bar(1).maximum, 6260 - 800);
        int32_t x = 1, y = 1;
        g.layoutToView(x, y);
        QCOMPARE(x, 210);
        g.centreOn(9000, 9000);
        QCOMPARE(QPoint(g.ScrollX(), g.ScrollY()), QPoint(0, 6260 - 800));
    }

    // A new zoom keeps the window's middle, the transforms undo each other at every zoom,
    // and object pictures (four times the background's resolution) shrink with the zoom
    // and with a finer background (here twice as fine).
    void transforms()
    {
        ViewGeometry g = make(1280, 800, 3260, 5880, 1630);
        g.centreOn(700, 1500);
        int32_t wasX = 702, wasY = 1502; // the middle centreOn leaves
        for (float zoom : {1.0f, 3.3f, 8.0f}) {
            g.setZoom(zoom);
            int32_t mx = 640, my = 400;
            g.viewToLayout(mx, my);
            QVERIFY(qAbs(mx - wasX) <= 1 && qAbs(my - wasY) <= 1);
            wasX = mx, wasY = my;
            QCOMPARE(g.ObjectScale(), 2.0f / zoom);
            for (int32_t lx = 250; lx < 800; lx += 37)
                for (int32_t ly = 950; ly < 1400; ly += 41) {
                    int32_t x = lx, y = ly;
                    g.layoutToView(x, y);
                    g.viewToLayout(x, y);
                    QCOMPARE(QPoint(x, y), QPoint(lx, ly));
                }
        }
    }
};

QTEST_GUILESS_MAIN(TestViewGeometry)
#include "tst_viewgeometry.moc"
