// The repaint without a window: culling around the visible area and what gets drawn.

#include "support/DocumentFixture.h"
#include "imaging/cGraphics.h"
#include "view/LayoutPainter.h"
#include "view/ViewGeometry.h"

#include <QtTest>

class TestLayoutPainter : public DocumentTest {
    Q_OBJECT

    // Objects drawn (the marker left out) with the view scrolled to (500, 300).
    int drawnAt(LayoutDocument &doc, ViewGeometry &view)
    {
        QImage target(view.clientWidth(), view.clientHeight(), QImage::Format_ARGB32_Premultiplied);
        target.fill(Qt::black);
        cGraphics g;
        g.CreateFromHdc(&target);
        LayoutPainter painter;
        return painter.Draw(g, doc, view) - (doc.HasStart() ? 0 : 1);
    }

private slots:
    void culling_data()
    {
        QTest::addColumn<int>("x");
        QTest::addColumn<int>("y");
        QTest::addColumn<int>("drawn");
        // Scrolled to 500, 300 with 200 x 100 units visible.
        QTest::newRow("127 left") << 500 - 127 << 350 << 1;
        QTest::newRow("129 left") << 500 - 129 << 350 << 0;
        QTest::newRow("127 above") << 600 << 300 - 127 << 1;
        QTest::newRow("129 above") << 600 << 300 - 129 << 0;
        QTest::newRow("127 right") << 700 + 127 << 350 << 1;
        QTest::newRow("129 right") << 700 + 129 << 350 << 0;
        QTest::newRow("127 below") << 600 << 400 + 127 << 1;
        QTest::newRow("129 below") << 600 << 400 + 129 << 0;
    }
    void culling()
    {
        QFETCH(int, x);
        QFETCH(int, y);
        QFETCH(int, drawn);
        auto doc = m_fx.document(QStringLiteral("AU1_cull.lyt"));
        addObject(*doc, 20, x, y);
        ViewGeometry view;
        view.setClientSize(200, 100);
        view.setBackground(doc->BoundsWidth(), doc->BoundsHeight(), 1630);
        view.setZoom(1.0f);
        view.setScroll(0, 500);
        view.setScroll(1, 300);
        QCOMPARE(drawnAt(*doc, view), drawn);
    }

    void withoutBackgroundNothingIsDrawn()
    {
        options().AU1 = m_fx.app.file(QStringLiteral("missing.png"));
        auto doc = m_fx.document(QStringLiteral("AU1_none.lyt"));
        QVERIFY(doc->Background().isNull());
        ViewGeometry view;
        view.setClientSize(200, 100);
        QImage target(200, 100, QImage::Format_ARGB32_Premultiplied);
        target.fill(Qt::black);
        cGraphics g;
        g.CreateFromHdc(&target);
        LayoutPainter painter;
        QCOMPARE(painter.Draw(g, *doc, view), 0);
        g.Handle()->end();
        QCOMPARE(target.pixel(100, 50), qRgb(0, 0, 0));
    }

    // The stretched background is kept between repaints but must follow the scroll.
    void backgroundFollowsTheScroll()
    {
        QImage bg(400, 300, QImage::Format_RGB32);
        bg.fill(Qt::red);
        for (int y = 0; y < 300; ++y)
            for (int x = 200; x < 400; ++x)
                bg.setPixel(x, y, qRgb(0, 0, 255));
        const QString path = m_fx.app.file(QStringLiteral("halves.png"));
        bg.save(path);
        options().AU1 = path;
        auto doc = m_fx.document(QStringLiteral("AU1_halves.lyt"));
        ViewGeometry view;
        view.setClientSize(100, 100);
        view.setBackground(400, 300, 1630);
        view.setZoom(1.0f);
        LayoutPainter painter;
        auto paint = [&] {
            QImage target(100, 100, QImage::Format_ARGB32_Premultiplied);
            cGraphics g;
            g.CreateFromHdc(&target);
            painter.DrawBackground(g, *doc, view);
            g.Handle()->end();
            return target.pixel(50, 50);
        };
        view.setScroll(0, 0);
        QCOMPARE(paint(), qRgb(255, 0, 0));
        view.setScroll(0, 250);
        QCOMPARE(paint(), qRgb(0, 0, 255));
    }
};

QTEST_MAIN(TestLayoutPainter)
#include "tst_layoutpainter.moc"
