// The repaint without a window: culling around the visible area, what gets drawn, thin
// lines at small sizes (in the view and in exports) and the selection marks.

#include "imaging/cGraphics.h"
#include "support/DocumentFixture.h"
#include "view/LayoutImageExport.h"
#include "view/LayoutPainter.h"
#include "view/ViewGeometry.h"

#include <QtTest>

class TestLayoutPainter : public DocumentTest {
    Q_OBJECT

    // Paints doc as view shows it on a black picture of the client size (into out when
    // given); returns what the painter counts as drawn.
    static int paint(const LayoutSession &session, ViewGeometry &view, QImage *out = nullptr)
    {
        QImage target(view.clientWidth(), view.clientHeight(), QImage::Format_ARGB32_Premultiplied);
        target.fill(Qt::black);
        int drawn;
        {
            cGraphics g;
            g.CreateFromHdc(&target);
            drawn = LayoutPainter().Draw(g, session.document(), session.Background(), view);
        }
        if (out)
            *out = target;
        return drawn;
    }

    // Some tests change the background; the others get the fixture's plain one.
    void prepare() override { options().AU1 = m_fx.app.file(QStringLiteral("bg.png")); }

    // The whole layout painted as the view shows it at zoom.
    static QImage paintView(const LayoutSession &session, ViewGeometry &view, float zoom)
    {
        view.setClientSize(int(1000 * zoom), int(800 * zoom));
        view.setBackground(1000, 800, 1000); // objects at true scale, as on the shipped pictures
        view.setZoom(zoom);
        QImage target;
        paint(session, view, &target);
        return target;
    }
    static QPoint inView(const ViewGeometry &view, int x, int y)
    {
        view.layoutToView(x, y);
        return {x, y};
    }
    // Pixels within reach of at whose colour is near colour (or, with far, not near it).
    static bool colourNear(const QImage &image, QPoint at, int reach, QRgb colour, int tolerance,
                           bool far = false)
    {
        for (int y = at.y() - reach; y <= at.y() + reach; ++y)
            for (int x = at.x() - reach; x <= at.x() + reach; ++x) {
                if (!image.valid(x, y))
                    continue;
                const QRgb p = image.pixel(x, y);
                const int d = std::max({qAbs(qRed(p) - qRed(colour)), qAbs(qGreen(p) - qGreen(colour)),
                                        qAbs(qBlue(p) - qBlue(colour))});
                if ((d > tolerance) == far)
                    return true;
            }
        return false;
    }

private slots:
    void initTestCase()
    {
        // White pictures, tinted by kind: the 23 x 5 strip of the lines and a 40 x 40 cone.
        for (const QSize size : {QSize(23, 5), QSize(40, 40)}) {
            QImage white(size, QImage::Format_ARGB32);
            white.fill(Qt::white);
            white.save(m_fx.app.file(size.height() == 5 ? QStringLiteral("objects/line.png")
                                                        : QStringLiteral("objects/cone.png")));
        }
        FillCatalogue();
    }

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
        auto session = m_fx.session(QStringLiteral("AU1_cull.lyt"));
        auto *doc = &session->document();
        addObject(*doc, 20, x, y);
        ViewGeometry view;
        view.setClientSize(200, 100);
        view.setBackground(doc->BoundsWidth(), doc->BoundsHeight(), 1630);
        view.setZoom(1.0f);
        view.setScroll(0, 500);
        view.setScroll(1, 300);
        QCOMPARE(paint(*session, view) - 1, drawn); // the start marker left out
    }

    void withoutBackgroundNothingIsDrawn()
    {
        options().AU1 = m_fx.app.file(QStringLiteral("missing.png"));
        auto session = m_fx.session(QStringLiteral("AU1_none.lyt"));
        auto *doc = &session->document();
        QVERIFY(session->Background().isNull());
        ViewGeometry view;
        view.setClientSize(200, 100);
        QImage target;
        QCOMPARE(paint(*session, view, &target), 0);
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
        auto session = m_fx.session(QStringLiteral("AU1_halves.lyt"));
        auto *doc = &session->document();
        ViewGeometry view;
        view.setClientSize(100, 100);
        view.setBackground(400, 300, 1630);
        view.setZoom(1.0f);
        LayoutPainter painter;
        auto paint = [&] {
            QImage target(100, 100, QImage::Format_ARGB32_Premultiplied);
            cGraphics g;
            g.CreateFromHdc(&target);
            painter.DrawBackground(g, session->Background(), view);
            g.Handle()->end();
            return target.pixel(50, 50);
        };
        view.setScroll(0, 0);
        QCOMPARE(paint(), qRgb(255, 0, 0));
        view.setScroll(0, 250);
        QCOMPARE(paint(), qRgb(0, 0, 255));
    }

    // A finish or checkpoint is a 5-pixel strip drawn at a small fraction of its
    // picture: at every width, turn and size it must leave pixels all along its length.
    void thinLinesStayWhole_data()
    {
        QTest::addColumn<bool>("exported");
        QTest::addColumn<QList<int>>("percents"); // view zoom or export size
        QTest::newRow("view") << false << QList<int>{10, 20, 30, 40, 50, 58, 60, 70, 80, 90, 100};
        QTest::newRow("export") << true << QList<int>{10, 20, 30, 40, 50, 60, 70, 80, 90, 100};
    }
    void thinLinesStayWhole()
    {
        QFETCH(bool, exported);
        QFETCH(QList<int>, percents);
        auto session = m_fx.session(QStringLiteral("AU1_lines.lyt"));
        auto *doc = &session->document();
        const QRgb ground = session->Background().Handle().pixel(0, 0);
        for (int percent : percents)
            for (int angle : {0, 45, 90})
                for (int width = 2; width <= 30; ++width) {
                    std::shared_ptr<varnoObject> line = CreateObjectForKind(Kind::Finish + width % 4);
                    line->setID(int16_t(Kind::Finish + width % 4));
                    line->setX(500);
                    line->setY(100);
                    line->Update(int16_t(angle), uint8_t(width));
                    DocumentState state;
                    state.objects = {line};
                    doc->restore(state);
                    QImage picture;
                    QPoint centre;
                    if (exported) {
                        // Only the rows around the line: the scale follows the width.
                        picture = QImage(10 * percent, 2 * percent, QImage::Format_ARGB32_Premultiplied);
                        QVERIFY(RenderLayoutPicture(ExportScene(*doc, session->Background()), picture));
                        centre = QPoint(5 * percent, percent);
                    } else {
                        ViewGeometry view;
                        picture = paintView(*session, view, float(percent) / 100.0f);
                        centre = inView(view, 500, 100);
                    }
                    // 22.8 picture pixels per unit of width, four to a layout unit.
                    const double half = width * 22.8 * percent / 400.0 / 2.0;
                    const double a = qDegreesToRadians(double(angle));
                    for (double along = std::min(0.0, 1 - half); along <= std::max(0.0, half - 1);
                         along += 1.0) {
                        const QPoint at =
                            centre + QPoint(qRound(along * std::cos(a)), qRound(-along * std::sin(a)));
                        QVERIFY2(colourNear(picture, at, 2, ground, 2, true),
                                 qPrintable(QStringLiteral(
                                                "width %1 turned %2 at %3%: nothing %4 px from the middle")
                                                .arg(width)
                                                .arg(angle)
                                                .arg(percent)
                                                .arg(along)));
                    }
                }
    }

    // The view outlines the selection and marks selected objects too small to see lit;
    // an export of the same document shows neither.
    void selectionMarks_data()
    {
        QTest::addColumn<float>("zoom");
        QTest::addColumn<bool>("marker");
        QTest::newRow("zoom 1: the cone is large enough") << 1.0f << false;
        QTest::newRow("zoom 0.25: the cone gets a marker") << 0.25f << true;
    }
    void selectionMarks()
    {
        QFETCH(float, zoom);
        QFETCH(bool, marker);
        auto session = m_fx.session(QStringLiteral("AU1_selection.lyt"));
        auto *doc = &session->document();
        addObject(*doc, Kind::Finish, 300, 300, 0, 10, true);
        addObject(*doc, 27, 500, 400, 0, 0, true);
        addObject(*doc, Kind::Checkpoint1, 700, 500, 0, 10, true);
        addObject(*doc, 27, 850, 150); // not selected, outside the selection
        ViewGeometry view;
        const QImage picture = paintView(*session, view, zoom);
        QRect outline;
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                if (colourNear(picture, {x, y}, 0, SelectionColour, 24))
                    outline |= QRect(x, y, 1, 1);
        // Around both lines whole (57 units long), clear of the unselected cone.
        const int reach = qRound(57 / 2 * zoom);
        QVERIFY(outline.contains(
            QRect(inView(view, 300, 300) - QPoint(reach, 0), inView(view, 700, 500) + QPoint(reach, 0))));
        QVERIFY(!outline.contains(inView(view, 850, 150)));
        QCOMPARE(colourNear(picture, inView(view, 500, 400), 4, SelectionColour, 24), marker);

        QImage exported(500, 400, QImage::Format_ARGB32_Premultiplied);
        QVERIFY(RenderLayoutPicture(ExportScene(*doc, session->Background()), exported));
        QVERIFY(!colourNear(exported, {250, 200}, 250, SelectionColour, 24));
    }
};

QTEST_MAIN(TestLayoutPainter)
#include "tst_layoutpainter.moc"
