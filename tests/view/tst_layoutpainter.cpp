// The repaint without a window: the kept background, thin lines at small sizes and the
// selection marks. Exports draw objects through the same object drawing and are compared
// with it, unselected, in tst_imageexport.

#include "imaging/cGraphics.h"
#include "support/DocumentFixture.h"
#include "view/LayoutPainter.h"
#include "view/ViewGeometry.h"

#include <QPainter>
#include <QtTest>

class TestLayoutPainter : public DocumentTest {
    Q_OBJECT

    // A view of client size cw x ch on a bw x bh background at zoom.
    static ViewGeometry viewOf(int cw, int ch, int bw, int bh, int span, float zoom = 1.0f)
    {
        ViewGeometry view;
        view.setClientSize(cw, ch);
        view.setBackground(bw, bh, span);
        view.setZoom(zoom);
        return view;
    }

    // Doc painted as view shows it on a black picture of the client size, by a new painter
    // or one kept between repaints; drawn, when given, gets what the painter counted.
    static QImage painted(const LayoutSession &session, const ViewGeometry &view, int *drawn = nullptr,
                          LayoutPainter *kept = nullptr)
    {
        LayoutPainter fresh;
        QImage target(view.clientWidth(), view.clientHeight(), QImage::Format_ARGB32_Premultiplied);
        target.fill(Qt::black);
        cGraphics g;
        g.CreateFromHdc(&target);
        const int n = (kept ? *kept : fresh).Draw(g, session.document(), session.Background(), view);
        g.Handle()->end();
        if (drawn)
            *drawn = n;
        return target;
    }

    // Some tests change the background; the others get the fixture's plain one.
    void prepare() override { options().AU1 = m_fx.app.file(QStringLiteral("bg.png")); }

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
                const QRgb p = image.valid(x, y) ? image.pixel(x, y) : 0;
                if (image.valid(x, y) && (std::max({qAbs(qRed(p) - qRed(colour)), qAbs(qGreen(p) - qGreen(colour)),
                                                    qAbs(qBlue(p) - qBlue(colour))}) > tolerance) == far)
                    return true;
            }
        return false;
    }

private slots:
    void initTestCase()
    {
        // White pictures, tinted by kind: the 23 x 5 strip of the lines and a 40 x 40 cone.
        for (const QString name : {"line", "cone"}) {
            QImage white(name == "line" ? QSize(23, 5) : QSize(40, 40), QImage::Format_ARGB32);
            white.fill(Qt::white);
            white.save(m_fx.app.file("objects/" + name + ".png"));
        }
        FillCatalogue();
    }

    // Scrolled to 500, 300 with 200 x 100 units visible: an object 127 units past an edge
    // may still reach in and is drawn, one 129 past is left out.
    void culling()
    {
        QList<int> drawn;
        for (QPoint direction : {QPoint(-1, 0), QPoint(0, -1), QPoint(1, 0), QPoint(0, 1)}) {
            auto session = m_fx.session(QStringLiteral("AU1_cull.lyt"));
            auto *doc = &session->document();
            for (int past : {127, 129}) // from the middle, past the half width or height
                addObject(*doc, 20, 600 + direction.x() * (100 + past), 350 + direction.y() * (50 + past));
            ViewGeometry view = viewOf(200, 100, doc->BoundsWidth(), doc->BoundsHeight(), 1630);
            view.setScroll(0, 500);
            view.setScroll(1, 300);
            painted(*session, view, &drawn.emplace_back());
            --drawn.last(); // the start marker left out
        }
        QCOMPARE(drawn, (QList<int>{1, 1, 1, 1}));
    }

    // The stretched background is kept between repaints but must follow the scroll;
    // without a picture nothing at all is drawn.
    void background()
    {
        QImage bg(400, 300, QImage::Format_RGB32);
        bg.fill(Qt::red);
        QPainter(&bg).fillRect(200, 0, 200, 300, Qt::blue);
        bg.save(options().AU1 = m_fx.app.file(QStringLiteral("halves.png")));
        auto session = m_fx.session(QStringLiteral("AU1_halves.lyt"));
        ViewGeometry view = viewOf(100, 100, 400, 300, 1630);
        LayoutPainter painter;
        const QRgb left = painted(*session, view, nullptr, &painter).pixel(50, 50);
        view.setScroll(0, 250);
        QCOMPARE((QList<QRgb>{left, painted(*session, view, nullptr, &painter).pixel(50, 50)}),
                 (QList<QRgb>{qRgb(255, 0, 0), qRgb(0, 0, 255)}));
        options().AU1 = m_fx.app.file(QStringLiteral("missing.png"));
        session = m_fx.session(QStringLiteral("AU1_none.lyt"));
        int drawn = -1;
        QCOMPARE(painted(*session, viewOf(200, 100, 0, 0, 0), &drawn).pixel(100, 50), qRgb(0, 0, 0));
        QCOMPARE(drawn, 0);
    }

    // A finish or checkpoint is a 5-pixel strip drawn at a small fraction of its
    // picture: at every width, turn and zoom it must leave pixels all along its length.
    void thinLinesStayWhole()
    {
        auto session = m_fx.session(QStringLiteral("AU1_lines.lyt"));
        auto *doc = &session->document();
        const QRgb ground = session->Background().Handle().pixel(0, 0);
        for (int percent : {10, 20, 30, 40, 50, 58, 60, 70, 80, 90, 100})
            for (int angle : {0, 45, 90})
                for (int width = 2; width <= 30; ++width) {
                    doc->restore({});
                    addObject(*doc, Kind::Finish + width % 4, 500, 100, angle, width);
                    const float zoom = float(percent) / 100.0f;
                    const ViewGeometry view =
                        viewOf(int(1000 * zoom), int(800 * zoom), 1000, 800, 1000, zoom);
                    const QImage picture = painted(*session, view);
                    const QPoint centre = inView(view, 500, 100);
                    // 22.8 picture pixels per unit of width, four to a layout unit.
                    const double half = width * 22.8 * percent / 400.0 / 2.0;
                    const double a = qDegreesToRadians(double(angle));
                    for (double along = std::min(0.0, 1 - half); along <= std::max(0.0, half - 1);
                         along += 1.0) {
                        const QPoint at =
                            centre + QPoint(qRound(along * std::cos(a)), qRound(-along * std::sin(a)));
                        QVERIFY2(colourNear(picture, at, 2, ground, 2, true),
                                 qPrintable(QStringLiteral("width %1 turned %2 at %3%: gap %4 off the middle")
                                                .arg(width).arg(angle).arg(percent).arg(along)));
                    }
                }
    }

    // The view outlines the selection and marks selected objects too small to see lit (the
    // cone at zoom 0.25, not at 1).
    void selectionMarks()
    {
        auto session = m_fx.session(QStringLiteral("AU1_selection.lyt"));
        auto *doc = &session->document();
        addObject(*doc, Kind::Finish, 300, 300, 0, 10, true);
        addObject(*doc, 27, 500, 400, 0, 0, true);
        addObject(*doc, Kind::Checkpoint1, 700, 500, 0, 10, true);
        addObject(*doc, 27, 850, 150); // not selected, outside the selection
        for (float zoom : {1.0f, 0.25f}) {
            const ViewGeometry view = viewOf(int(1000 * zoom), int(800 * zoom), 1000, 800, 1000, zoom); // the whole layout
            const QImage picture = painted(*session, view);
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
            QCOMPARE(colourNear(picture, inView(view, 500, 400), 4, SelectionColour, 24), zoom < 1.0f);
        }
    }
};

QTEST_MAIN(TestLayoutPainter)
#include "tst_layoutpainter.moc"
