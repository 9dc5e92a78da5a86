// The palette without its widget: rows per site, hit-testing, scroll range, the pack
// list and the painting.

#include "app/ErrorLog.h"
#include "app/Language.h"
#include "app/Startup.h"
#include "catalogue/ObjectKinds.h"
#include "catalogue/PackList.h"
#include "catalogue/PalettePainter.h"
#include "catalogue/PaletteRows.h"
#include "core/LayoutDocument.h"
#include "imaging/ColorMatrix.h"
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

void activate(const QString &type, const Uniques &u = {false, false, false, false, false})
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

// Sum of alpha in the 3 x 3 pixels around (x, y).
int alphaAround(const QImage &img, int x, int y)
{
    int sum = 0;
    for (int dy = -1; dy <= 1; ++dy)
        for (int dx = -1; dx <= 1; ++dx)
            if (img.rect().contains(x + dx, y + dy))
                sum += qAlpha(img.pixel(x + dx, y + dy));
    return sum;
}

QImage paint(const PaletteLook &look, const PackList &packs = PackList(), int h = 320)
{
    QImage img(200, h, QImage::Format_ARGB32);
    img.fill(Qt::magenta);
    QPainter p(&img);
    PaintPalette(p, img.width(), img.height(), look, packs);
    p.end();
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

bool near(QColor a, QColor b, int tolerance = 6)
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
        QTest::newRow("general AU") << "AU1" << 0 << range16(0, 4);
        QTest::newRow("general BL, with unique ones placed") << "BL3" << 0 << range16(0, 4);
        QTest::newRow("chalk AU") << "AU2" << 1 << range16(5, 13);
        QTest::newRow("cones AU: cone1 and cone2 gone") << "AU1" << 2 << range16(14, 28);
        QTest::newRow("cones BL") << "BL3" << 2 << range16(14, 30);
        QTest::newRow("tyres AU close up") << "AU3" << 3 << QList<int16_t>{31, 32, 33, 34, 37};
        QTest::newRow("tyres BL close up") << "BL3" << 3 << QList<int16_t>{31, 32, 35, 36};
        QTest::newRow("objects AU") << "AU4" << 4 << range16(40, 53);
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
        QTest::addColumn<Uniques>("uniques");
        QTest::addColumn<int>("panel");
        QTest::addColumn<int>("y");
        QTest::addColumn<int>("scroll");
        QTest::addColumn<int>("packs");
        QTest::addColumn<int>("item");
        const Uniques none{false, false, false, false, false};
        const Uniques startAndCp2{true, false, true, false, false};
        QTest::newRow("first row") << "AU1" << none << 0 << 10 << 0 << 0 << 0;
        QTest::newRow("placed start is never hot") << "AU1" << startAndCp2 << 0 << 10 << 0 << 0 << -1;
        QTest::newRow("placed checkpoint 2 is never hot") << "AU1" << startAndCp2 << 0 << 3 * 52 + 5 << 0 << 0 << -1;
        QTest::newRow("finish still free") << "AU1" << startAndCp2 << 0 << 52 + 5 << 0 << 0 << 1;
        QTest::newRow("rows counted without the top margin") << "AU1" << none << 0 << 51 << 0 << 0 << 0;
        QTest::newRow("next pitch") << "AU1" << none << 0 << 52 << 0 << 0 << 1;
        QTest::newRow("below the last row") << "AU1" << none << 0 << 5 * 52 + 1 << 0 << 0 << -1;
        QTest::newRow("scrolled by a row") << "AU1" << none << 2 << 10 << 52 << 0 << 15;
        QTest::newRow("scroll and pointer add up") << "AU1" << none << 2 << 30 << 30 << 0 << 15;
        QTest::newRow("third tyre AU is red") << "AU1" << none << 3 << 2 * 52 + 20 << 0 << 0 << 33;
        QTest::newRow("third tyre BL is blue") << "BL3" << none << 3 << 2 * 52 + 20 << 0 << 0 << 35;
        QTest::newRow("BL objects: posts after banners") << "BL3" << none << 4 << 2 * 52 + 1 << 0 << 0 << 45;
        QTest::newRow("just above the list is row 0") << "AU1" << none << 0 << -20 << 0 << 0 << 0;
        QTest::newRow("far above the list") << "AU1" << none << 0 << -60 << 0 << 0 << -1;
        QTest::newRow("second pack") << "AU1" << none << 6 << 60 << 0 << 2 << 2;
        QTest::newRow("past the packs") << "AU1" << none << 6 << 60 << 0 << 1 << -1;
        QTest::newRow("no packs") << "AU1" << none << 6 << 10 << 0 << 0 << -1;
    }
    void hitTesting()
    {
        QFETCH(QString, type);
        QFETCH(Uniques, uniques);
        QFETCH(int, panel);
        QFETCH(int, y);
        QFETCH(int, scroll);
        QFETCH(int, packs);
        QFETCH(int, item);
        activate(type, uniques);
        QCOMPARE(int(PaletteHitItem(panel, y, scroll, packs)), item);
    }

    void scrollRange_data()
    {
        QTest::addColumn<int>("rows");
        QTest::addColumn<int>("height");
        QTest::addColumn<int>("page");
        QTest::addColumn<int>("maximum");
        QTest::newRow("fits") << 5 << 400 << 0 << 0;
        QTest::newRow("exactly fits") << 5 << 260 << 0 << 0;
        QTest::newRow("one pixel short") << 5 << 259 << 259 << 5;
        QTest::newRow("long list") << 17 << 300 << 300 << 17 * 52 - 300 + 4;
        QTest::newRow("empty") << 0 << 300 << 0 << 0;
    }
    void scrollRange()
    {
        QFETCH(int, rows);
        QFETCH(int, height);
        QFETCH(int, page);
        QFETCH(int, maximum);
        const PaletteScrollRange r = PaletteScroll(rows, height);
        QCOMPARE(r.page, page);
        QCOMPARE(r.maximum, maximum);
    }

    void packListing_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QStringList>("files");
        QTest::addColumn<QStringList>("listed");
        QTest::addColumn<QStringList>("captions");
        const QStringList files{u"AU_b.pack"_s,   u"AU_a.pack"_s,  u"au_lower.PACK"_s, u"BL_ramps.pack"_s,
                                u"AU_notes.txt"_s, u"XAU_x.pack"_s, u"AU_.pack"_s};
        QTest::newRow("AU site, any case, by name")
            << "AU1" << files << QStringList{u"AU_.pack"_s, u"AU_a.pack"_s, u"AU_b.pack"_s, u"au_lower.PACK"_s}
            << QStringList{QString(), u"a"_s, u"b"_s, u"lower"_s};
        QTest::newRow("BL site") << "BL3" << files << QStringList{u"BL_ramps.pack"_s} << QStringList{u"ramps"_s};
        QTest::newRow("no packs") << "AU2" << QStringList{u"BL_x.pack"_s} << QStringList{} << QStringList{};
    }
    void packListing()
    {
        QFETCH(QString, type);
        QFETCH(QStringList, files);
        QFETCH(QStringList, listed);
        QFETCH(QStringList, captions);
        TempAppFolder app(false);
        QDir().mkpath(app.file(u"packs"_s));
        for (const QString &f : files)
            WriteFile(app.file(u"packs/"_s + f), pack(10, 10, {{0, 0}, {10, 10}}));
        activate(type);
        QCOMPARE(PackSitePrefix(), type.left(2));
        PackList list;
        QVERIFY(list.Refresh());
        QCOMPARE(list.Count(), int(listed.size()));
        QVERIFY(list.Entry(0).FileName.isEmpty());
        for (int i = 0; i < listed.size(); ++i) {
            QCOMPARE(list.Entry(i + 1).FileName, listed[i]);
            QCOMPARE(list.Entry(i + 1).Caption, captions[i]);
            QCOMPARE(list.Entry(i + 1).Preview.Width(), 48);
        }
        QVERIFY(LoggedErrors().isEmpty());
    }

    // A pack that cannot be read ends the refresh with one report; the packs before it stay.
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
        QCOMPARE(list.Count(), 1);
        QCOMPARE(list.Entry(1).FileName, u"AU_1good.pack"_s);
        QCOMPARE(LoggedErrors(), QStringList{error + u" in Objectbar.RefreshPacks"_s});
        QCOMPARE(m_dialogs->messages.size(), 1);
        // The next refresh starts from nothing again.
        QFile::remove(app.file(u"packs/AU_2bad.pack"_s));
        QVERIFY(list.Refresh());
        QCOMPARE(list.Count(), 2);
    }

    void previewDots_data()
    {
        QTest::addColumn<int>("w");
        QTest::addColumn<int>("h");
        QTest::addColumn<QList<QPoint>>("objects");
        QTest::addColumn<QList<QPoint>>("dots");
        // scale 46/100: the box is 46 x 23 and is centred at 23 - 23, 23 - 11.
        QTest::newRow("wide box") << 100 << 50 << QList<QPoint>{{0, 0}, {100, 50}, {50, 0}}
                                  << QList<QPoint>{{0, 12}, {46, 35}, {23, 12}};
        // scale 46/7: the width rounds to 46, the height to 20 (19.714).
        QTest::newRow("tall box") << 3 << 7 << QList<QPoint>{{0, 0}, {3, 7}}
                                                  << QList<QPoint>{{13, 0}, {33, 46}};
        QTest::newRow("single object sits in the middle") << 0 << 0 << QList<QPoint>{{0, 0}}
                                                          << QList<QPoint>{{23, 23}};
    }
    void previewDots()
    {
        QFETCH(int, w);
        QFETCH(int, h);
        QFETCH(QList<QPoint>, objects);
        QFETCH(QList<QPoint>, dots);
        PackData data;
        data.width = int16_t(w);
        data.height = int16_t(h);
        data.count = int16_t(objects.size());
        for (const QPoint &p : objects)
            data.records.append(PackRecord{14, int16_t(p.x()), int16_t(p.y()), 0, 0});
        const QImage img = PackPreview(data).Handle().convertToFormat(QImage::Format_ARGB32);
        QCOMPARE(img.size(), QSize(48, 48));
        int total = 0;
        for (const QPoint &d : dots) {
            QVERIFY2(alphaAround(img, d.x(), d.y()) > 200, qPrintable(u"no dot at %1,%2"_s.arg(d.x()).arg(d.y())));
            total += alphaAround(img, d.x(), d.y());
        }
        // Nothing else is drawn: every lit pixel belongs to one of the dots.
        int lit = 0;
        for (int y = 0; y < 48; ++y)
            for (int x = 0; x < 48; ++x)
                if (qAlpha(img.pixel(x, y)) > 0) {
                    bool nearDot = false;
                    for (const QPoint &d : dots)
                        nearDot = nearDot || (std::abs(d.x() - x) <= 1 && std::abs(d.y() - y) <= 1);
                    QVERIFY2(nearDot, qPrintable(u"stray pixel %1,%2"_s.arg(x).arg(y)));
                    ++lit;
                }
        QVERIFY(lit > 0 && total > 0);
    }

    // The selected gradient, the ghosted unavailable kind and its grey caption.
    void paintingKindPanel()
    {
        activate(u"AU1"_s, {true, false, false, false, false}); // the start is placed
        const QImage selectedFinish = paint({0, 1, 0});
        const QImage nothingSelected = paint({0, -1, 0});
        const int row1 = PaletteRowTop(1, 0);
        // Cell corners lie outside the centred placeholder, so they show what is behind it.
        const QColor topLeft = selectedFinish.pixelColor(Palette::CellLeft, row1);
        const QColor bottomRight = selectedFinish.pixelColor(Palette::CellLeft + 47, row1 + 47);
        QVERIFY2(near(topLeft, QColor(169, 169, 169), 8), qPrintable(topLeft.name()));
        QVERIFY2(bottomRight.red() < 30 && bottomRight.red() >= 0, qPrintable(bottomRight.name()));
        QVERIFY(topLeft.red() > bottomRight.red());
        QCOMPARE(nothingSelected.pixelColor(Palette::CellLeft, row1), Palette::CanvasColour);
        // Nothing spills past the cell.
        QCOMPARE(selectedFinish.pixelColor(Palette::CellLeft + 49, row1 + 2), Palette::CanvasColour);

        // The start (row 0) is selected but unavailable: no gradient, picture ghosted.
        const QImage selectedStart = paint({0, 0, 0});
        QCOMPARE(selectedStart.pixelColor(Palette::CellLeft, PaletteRowTop(0, 0)), Palette::CanvasColour);
        const ObjectKind &start = ObjectKinds()[0];
        const QImage pic = start.Image.Handle().convertToFormat(QImage::Format_ARGB32);
        QPoint solid(-1, -1);
        for (int y = 0; y < pic.height() && solid.x() < 0; ++y)
            for (int x = 0; x < pic.width(); ++x)
                if (qAlpha(pic.pixel(x, y)) == 255) {
                    solid = {x, y};
                    break;
                }
        QVERIFY(solid.x() >= 0);
        const QPoint at(Palette::CellLeft + start.OffsetX + solid.x(), PaletteRowTop(0, 0) + start.OffsetY + solid.y());
        const QColor source = pic.pixelColor(solid);
        const QColor ghost = selectedStart.pixelColor(at);
        const QColor behind = Palette::CanvasColour;
        auto blend = [](int s, int b) { return int(std::lround(0.55 * s + 0.45 * b)); };
        QVERIFY2(near(ghost, QColor(blend(source.red(), behind.red()), blend(source.green(), behind.green()),
                                    blend(source.blue(), behind.blue())),
                      3),
                 qPrintable(ghost.name()));
        // The finish is drawn plainly.
        const ObjectKind &finish = ObjectKinds()[1];
        const QImage finishPic = finish.Image.Handle().convertToFormat(QImage::Format_ARGB32);
        const QPoint fAt(Palette::CellLeft + finish.OffsetX + solid.x(), row1 + finish.OffsetY + solid.y());
        QVERIFY(near(nothingSelected.pixelColor(fAt), finishPic.pixelColor(solid), 2));

        // Captions: grey for the placed start, white for the finish.
        const int startCaption = captionBrightness(nothingSelected, PaletteRowTop(0, 0));
        QVERIFY2(startCaption > 120 && startCaption <= 169, qPrintable(QString::number(startCaption)));
        QVERIFY(captionBrightness(nothingSelected, row1) >= 240);
    }

    void paintingMarshallCircles_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QColor>("pen");
        QTest::newRow("restricted invisible") << 0 << QColor(255, 0, 0);
        QTest::newRow("restricted point right") << 3 << QColor(255, 0, 0);
        QTest::newRow("route checker") << 4 << QColor(0, 255, 0);
    }
    void paintingMarshallCircles()
    {
        QFETCH(int, row);
        QFETCH(QColor, pen);
        const QImage img = paint({5, -1, 0});
        const int top = PaletteRowTop(row, 0);
        // Left and top of the circle: on the cell's edge, clear of the picture.
        for (const QPoint p : {QPoint(Palette::CellLeft, top + 24), QPoint(Palette::CellLeft + 24, top)})
            QVERIFY2(near(img.pixelColor(p), pen, 40), qPrintable(img.pixelColor(p).name()));
        // Other panels have no circles.
        QCOMPARE(paint({4, -1, 0}).pixelColor(Palette::CellLeft, top + 24), Palette::CanvasColour);
    }

    void paintingScrollAndPacks()
    {
        // Scrolled by half a row, row 1 starts at 4 + 52 - 26.
        const QImage img = paint({0, 1, 26});
        QVERIFY(near(img.pixelColor(Palette::CellLeft, 30), QColor(169, 169, 169), 8));
        QCOMPARE(img.pixelColor(Palette::CellLeft, 30 - 1), Palette::CanvasColour);

        TempAppFolder app(false);
        WriteFile(app.file(u"packs/AU_one.pack"_s), pack(0, 0, {{0, 0}}));
        PackList packs;
        QVERIFY(packs.Refresh());
        const QImage shown = paint({6, 1, 0}, packs);
        // The preview's single dot in the middle of the first cell, the caption in white.
        const QColor dot = shown.pixelColor(Palette::CellLeft + 23, PaletteRowTop(0, 0) + 23);
        QVERIFY2(dot.red() > 150, qPrintable(dot.name()));
        QVERIFY(captionBrightness(shown, PaletteRowTop(0, 0)) >= 240);
        // No selection gradient on the pack panel.
        QCOMPARE(shown.pixelColor(Palette::CellLeft, PaletteRowTop(0, 0)), Palette::CanvasColour);
    }
};

QTEST_MAIN(TestPaletteModel)
#include "tst_palettemodel.moc"
