#include "base/ErrorLog.h"
#include "catalogue/ObjectKinds.h"
#include "core/LayoutObject.h"
#include "imaging/cGraphics.h"
#include "support/TestSupport.h"

#include <QRegularExpression>
#include <QtTest>

using namespace Qt::StringLiterals;

class TestLayoutObject : public QObject {
    Q_OBJECT
    TempAppFolder m_app{false};

    static std::unique_ptr<varnoObject> make(int kind, int16_t angle = 0, uint8_t width = 0)
    {
        auto o = CreateObjectForKind(kind);
        o->setID(static_cast<int16_t>(kind));
        o->Update(angle, width);
        return o;
    }
    // The object drawn without smoothing at (at, at) on a clear side x side canvas.
    static cBitmap drawn(varnoObject &o, int side, int at, float zoom)
    {
        cBitmap canvas;
        canvas.CreateFromScan0(side, side);
        {
            cGraphics g;
            g.GetGraphicsContext(canvas);
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
        for (const auto &[name, size, colour] : {std::tuple{"start", QSize(40, 20), QColor(200, 0, 0)},
                                                 std::tuple{"line", QSize(23, 5), QColor(Qt::white)},
                                                 std::tuple{"marshall", QSize(14, 14), QColor(Qt::yellow)}}) {
            QImage img(size, QImage::Format_ARGB32);
            img.fill(colour);
            img.save(m_app.file(u"objects/%1.png"_s.arg(QLatin1String(name))));
        }
        FillCatalogue();
    }

    // Update turns an angle once into -180..180 and no further, for every class; what it
    // cannot do is logged and shown.
    void update()
    {
        for (int kind : {0, 1, 56}) {
            QList<int> stored;
            for (int angle : {-181, 181, 180, -180, 541, -541})
                stored << make(kind, int16_t(angle), 10)->Angle();
            QCOMPARE(stored, (QList<int>{179, -179, 180, -180, 181, -181}));
        }
        ScriptedDialogs dlg;
        ClearLoggedErrors();
        make(0, 32500, 10); // angle + 360 overflows
        ctrlObject outside;
        outside.setID(61); // a kind outside the catalogue
        outside.Update(0, 10);
        QCOMPARE(LoggedErrors(), (QStringList{"6: Overflow in nrmlObject.varnoObject_Update",
                                              "9: Subscript out of range in ctrlObject.varnoObject_Update"}));
        QCOMPARE(dlg.messages.size(), 2);
    }

    // The start's 40 + 32, a checkpoint of width 4 round(91.2) + 32, a circle 23 x width.
    // Drawn without smoothing at zoom 4 the start's 72 square is 18 and its 40 x 20 block
    // 10 x 5 opaque pixels; however small, or at zoom 0, it keeps one pixel.
    void sizes()
    {
        QList<int> sizes;
        for (auto [kind, width] : {std::pair{0, 0}, {2, 4}, {55, 10}})
            sizes << make(kind, 0, uint8_t(width))->ImageSize();
        QCOMPARE(sizes, (QList<int>{72, 123, 230}));
        auto o = make(0);
        QList<int> opaque;
        for (float zoom : {1000.0f, 0.0f, 4.0f}) {
            const cBitmap canvas = drawn(*o, 60, 30, zoom);
            opaque << 0;
            for (int y = 0; y < 60; ++y)
                for (int x = 0; x < 60; ++x)
                    opaque.last() += canvas.GetPixelAlpha(x, y) > 128;
        }
        QCOMPARE(opaque, (QList<int>{1, 1, 50}));
    }

    // The 40 x 20 start turned by 90 stands upright: covered 15 above the middle, clear 15
    // to the side, and lying flat the other way round. A control object given a
    // restricted-area kind gets a line's thin bar: covered 2 rows off the middle, not 4.
    void coverage()
    {
        auto upright = make(0, 90), flat = make(0, 0);
        int c = flat->image().Width() / 2;
        QCOMPARE((QList<bool>{upright->OnPixel(c, c - 15), upright->OnPixel(c - 15, c),
                              flat->OnPixel(c - 15, c), flat->OnPixel(c, c - 15), flat->OnPixel(-1, 0)}),
                 (QList<bool>{true, false, true, false, false}));
        ctrlObject o;
        o.setID(55);
        QImage bar(10, 30, QImage::Format_ARGB32);
        bar.fill(Qt::white);
        ObjectKinds()[55].Image.setImage(bar);
        o.Update(0, 10);
        ObjectKinds()[55].Image = cBitmap();
        QCOMPARE(o.image().Width(), 228 + 32);
        c = o.image().Width() / 2;
        QVERIFY(o.OnPixel(c, c + 2) && o.OnPixel(c, c - 2) && !o.OnPixel(c, c - 4));
    }

    // A control object's key follows its kind (7 is no control kind and leaves it); other
    // keys are unique time stamps; only a route checker keeps its number.
    void keysAndRouteIndex()
    {
        ctrlObject c;
        QStringList ctrl{c.Key()};
        for (int id : {3, 7, 1})
            c.setID(int16_t(id)), ctrl << c.Key();
        QCOMPARE(ctrl, (QStringList{"", "checkpoint 2", "checkpoint 2", "finish"}));
        nrmlObject n;
        QVERIFY2(QRegularExpression(u"^\\d{6}-\\d{6}\\d+(\\.\\d+)?$"_s).match(n.Key()).hasMatch(), qPrintable(n.Key()));
        n.setID(0);
        QCOMPARE(n.Key(), u"start"_s);
        QSet<QString> seen;
        for (int i = 0; i < 2000; ++i)
            seen.insert(mrshObject().Key());
        QCOMPARE(seen.size(), 2000);
        mrshObject checker, area;
        checker.setID(59), area.setID(56);
        checker.setRouteIndex(4), area.setRouteIndex(4);
        QCOMPARE((QList<int>{checker.RouteIndex(), area.RouteIndex()}), (QList<int>{4, 0}));
    }

    // A picture is lit by adding 0.55 to every channel when selected (its middle pixel);
    // a circle (width 10 at zoom 4: diameter 230 / 4 = 57.5 -> 58, pen 7) has its ring
    // about 25 pixels right of the middle, a lighter pen when selected, and leaves its
    // middle and the outside clear.
    void colours()
    {
        const QList<std::tuple<int, bool, QColor>> cases{
            {0, false, QColor(200, 0, 0)},      {0, true, QColor(255, 140, 140)},
            {59, false, QColor(0, 255, 0)},     {59, true, QColor(0x90, 0xEE, 0x90)},
            {55, false, QColor(255, 0, 0)},     {55, true, QColor(0xFF, 0xC0, 0xCB)}};
        for (const auto &[kind, selected, colour] : cases) {
            auto o = make(kind, 0, 10);
            o->setSelected(selected);
            const bool circle = kind != 0;
            const cBitmap canvas = drawn(*o, 100, 50, circle ? 4.0f : 1.0f);
            const QColor got(canvas.Handle().pixel(circle ? 75 : 50, 50));
            QVERIFY2(qAbs(got.red() - colour.red()) <= 1 && qAbs(got.green() - colour.green()) <= 1
                         && qAbs(got.blue() - colour.blue()) <= 1,
                     qPrintable(QString("kind %1 selected %2: %3").arg(kind).arg(selected).arg(got.name())));
            QVERIFY(!circle || (canvas.GetPixelAlpha(50, 50) == 0 && canvas.GetPixelAlpha(50 + 31, 50) == 0));
        }
    }
};

QTEST_MAIN(TestLayoutObject)
#include "tst_layoutobject.moc"
