// The palette without its widget: rows per site, hit-testing, scroll range, the pack
// list and the painting.

#include "base/ErrorLog.h"
#include "base/Language.h"
#include "catalogue/ObjectKinds.h"
#include "catalogue/PackList.h"
#include "catalogue/PalettePainter.h"
#include "catalogue/PaletteRows.h"
#include "core/LayoutDocument.h"
#include "support/TestSupport.h"

#include <QPainter>
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

QImage paint(const PaletteLook &look, const PackList &packs = PackList())
{
    QImage img(200, 320, QImage::Format_ARGB32);
    QPainter p(&img);
    PaintPalette(p, img.width(), img.height(), look, packs);
    return img;
}

// The brightest channel value in the caption box of a row.
int captionBrightness(const QImage &img, int top)
{
    int best = 0;
    for (int y = top + Palette::CaptionDown; y < top + Palette::CaptionDown + 14; ++y)
        for (int x = Palette::CaptionLeft; x < 190; ++x) {
            const QRgb c = img.pixel(x, y);
            best = std::max({best, qRed(c), qGreen(c), qBlue(c)});
        }
    return best;
}

bool near(QColor a, QColor b, int tolerance)
{
    return std::abs(a.red() - b.red()) <= tolerance && std::abs(a.green() - b.green()) <= tolerance
           && std::abs(a.blue() - b.blue()) <= tolerance;
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
        // No objects folder: every kind shows the 24 x 24 placeholder, centred in its cell.
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
        QTest::newRow("cones BL") << "BL3" << 2 << range16(14, 30);
        QTest::newRow("tyres BL close up") << "BL3" << 3 << QList<int16_t>{31, 32, 35, 36};
        QTest::newRow("objects BL") << "BL3" << 4 << QList<int16_t>{38, 39, 45, 46, 47, 49, 50, 51, 52, 53, 54};
        QTest::newRow("marshall, never kind 60") << "AU1" << 5 << range16(55, 59);
        QTest::newRow("packs hold no kinds") << "AU1" << 6 << QList<int16_t>{};
    }
    void rowsPerSite()
    {
        QFETCH(QString, type);
        QFETCH(int, panel);
        QFETCH(QList<int16_t>, kinds);
        activate(type, {true, true, false, true, true});
        QCOMPARE(PanelKinds(panel), kinds);
        if (panel != Palette::PackPanel)
            QCOMPARE(PanelRowCount(panel, 3), int(kinds.size()));
    }

    void hitTesting_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<int>("panel");
        QTest::addColumn<int>("y");
        QTest::addColumn<int>("scroll");
        QTest::addColumn<int>("packs");
        QTest::addColumn<int>("item");
        QTest::newRow("rows counted without the top margin") << "AU1" << 0 << 51 << 0 << 0 << 0;
        QTest::newRow("next pitch") << "AU1" << 0 << 52 << 0 << 0 << 1;
        QTest::newRow("below the last row") << "AU1" << 0 << 5 * 52 + 1 << 0 << 0 << -1;
        QTest::newRow("scroll and pointer add up") << "AU1" << 2 << 30 << 30 << 0 << 15;
        QTest::newRow("BL objects: posts after banners") << "BL3" << 4 << 2 * 52 + 1 << 0 << 0 << 45;
        QTest::newRow("just above the list is row 0") << "AU1" << 0 << -20 << 0 << 0 << 0;
        QTest::newRow("far above the list") << "AU1" << 0 << -60 << 0 << 0 << -1;
        QTest::newRow("second pack") << "AU1" << 6 << 60 << 0 << 2 << 2;
        QTest::newRow("past the packs") << "AU1" << 6 << 60 << 0 << 1 << -1;
    }
    void hitTesting()
    {
        QFETCH(QString, type);
        QFETCH(int, panel);
        QFETCH(int, y);
        QFETCH(int, scroll);
        QFETCH(int, packs);
        QFETCH(int, item);
        activate(type);
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
        QTest::newRow("header cut short") << QByteArray("\x05\x00\x02", 3) << "62: Input past end of file";
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

    // The 48 x 48 preview holds a dot at each scaled object and nothing else.
    void previewDots_data()
    {
        QTest::addColumn<QSize>("box");
        QTest::addColumn<QList<QPoint>>("objects");
        QTest::addColumn<QList<QPoint>>("dots");
        // scale 46/100: the box is 46 x 23 and is centred at 23 - 23, 23 - 11.
        QTest::newRow("wide box") << QSize(100, 50) << QList<QPoint>{{0, 0}, {100, 50}, {50, 0}}
                                  << QList<QPoint>{{0, 12}, {46, 35}, {23, 12}};
        // scale 46/7: the width rounds to 46, the height to 20 (19.714).
        QTest::newRow("tall box") << QSize(3, 7) << QList<QPoint>{{0, 0}, {3, 7}} << QList<QPoint>{{13, 0}, {33, 46}};
        QTest::newRow("single object sits in the middle") << QSize(0, 0) << QList<QPoint>{{0, 0}}
                                                          << QList<QPoint>{{23, 23}};
    }
    void previewDots()
    {
        QFETCH(QSize, box);
        QFETCH(QList<QPoint>, objects);
        QFETCH(QList<QPoint>, dots);
        PackData data{int16_t(box.width()), int16_t(box.height()), int16_t(objects.size()), {}};
        for (const QPoint &p : objects)
            data.records.append(PackRecord{14, int16_t(p.x()), int16_t(p.y()), 0, 0});
        const QImage img = PackPreview(data).Handle().convertToFormat(QImage::Format_ARGB32);
        QCOMPARE(img.size(), QSize(48, 48));
        // Each dot is lit, and nothing else is: at most its 3 x 3 pixels each.
        int lit = 0;
        for (int i = 0; i < 48 * 48; ++i)
            lit += qAlpha(img.pixel(i % 48, i / 48)) > 0;
        QVERIFY2(lit <= 9 * dots.size(), qPrintable(QString::number(lit)));
        for (const QPoint &d : dots) {
            int alpha = 0;
            for (int i = 0; i < 9; ++i)
                if (img.rect().contains(d + QPoint(i % 3 - 1, i / 3 - 1)))
                    alpha += qAlpha(img.pixel(d + QPoint(i % 3 - 1, i / 3 - 1)));
            QVERIFY2(alpha > 200, qPrintable(u"no dot at %1,%2"_s.arg(d.x()).arg(d.y())));
        }
    }

    // The selected gradient, the ghosted unavailable kind and its grey caption.
    void paintingKindPanel()
    {
        activate(u"AU1"_s, {true, false, false, false, false}); // the start is placed
        const QImage selectedFinish = paint({0, 1, 0});
        const QImage selectedStart = paint({0, 0, 0});
        const int row0 = PaletteRowTop(0, 0), row1 = PaletteRowTop(1, 0);
        // Cell corners lie outside the centred placeholder: the gradient runs light to dark.
        QVERIFY(near(selectedFinish.pixelColor(Palette::CellLeft, row1), Palette::SelectedLight, 8));
        QVERIFY(selectedFinish.pixelColor(Palette::CellLeft + 47, row1 + 47).red() < 30);
        QCOMPARE(selectedFinish.pixelColor(Palette::CellLeft + 49, row1 + 2), Palette::CanvasColour);
        // The unavailable start gets no gradient even when selected.
        QCOMPARE(selectedStart.pixelColor(Palette::CellLeft, row0), Palette::CanvasColour);

        // The start's picture is ghosted over the ground, the finish drawn plainly.
        const QImage pic = ObjectKinds()[0].Image.Handle().convertToFormat(QImage::Format_ARGB32);
        QPoint solid(-1, -1);
        for (int i = 0; i < pic.width() * pic.height() && solid.x() < 0; ++i)
            if (qAlpha(pic.pixel(i % pic.width(), i / pic.width())) == 255)
                solid = {i % pic.width(), i / pic.width()};
        QVERIFY(solid.x() >= 0);
        auto at = [&](int kind, int top) {
            return QPoint(Palette::CellLeft + ObjectKinds()[kind].OffsetX, top + ObjectKinds()[kind].OffsetY) + solid;
        };
        const QColor src = pic.pixelColor(solid), bg = Palette::CanvasColour;
        auto blend = [](int s, int b) { return int(std::lround(0.55 * s + 0.45 * b)); };
        const QColor ghost(blend(src.red(), bg.red()), blend(src.green(), bg.green()), blend(src.blue(), bg.blue()));
        QVERIFY2(near(selectedFinish.pixelColor(at(0, row0)), ghost, 3),
                 qPrintable(selectedFinish.pixelColor(at(0, row0)).name()));
        const QImage finishPic = ObjectKinds()[1].Image.Handle().convertToFormat(QImage::Format_ARGB32);
        QVERIFY(near(selectedStart.pixelColor(at(1, row1)), finishPic.pixelColor(solid), 2));

        // Captions: grey for the placed start, white for the finish.
        const int startCaption = captionBrightness(selectedStart, row0);
        QVERIFY2(startCaption > 120 && startCaption <= 169, qPrintable(QString::number(startCaption)));
        QVERIFY(captionBrightness(selectedStart, row1) >= 240);

        // Painting and hit-testing count rows alike: scrolled by half a row, row 1 starts
        // at 4 + 52 - 26.
        const QImage img = paint({0, 1, 26});
        QVERIFY(near(img.pixelColor(Palette::CellLeft, 30), Palette::SelectedLight, 8));
        QCOMPARE(img.pixelColor(Palette::CellLeft, 30 - 1), Palette::CanvasColour);
    }
};

QTEST_MAIN(TestPaletteModel)
#include "tst_palettemodel.moc"
