// The palette widget driven by synthesized mouse events: hovering, dragging, dropping,
// clicking, the grip, panel switching with remembered scroll positions, and packs.

#include "base/ErrorLog.h"
#include "base/Language.h"
#include "catalogue/ObjectKinds.h"
#include "catalogue/PaletteRows.h"
#include "catalogue/ui/Objectbar.h"
#include "catalogue/ui/PaletteGrip.h"
#include "core/LayoutDocument.h"
#include "support/TestSupport.h"

#include <QtTest>
#include <QtWidgets>

using namespace Qt::StringLiterals;

namespace {

using Uniques = QList<bool>; // start, checkpoint 1, 2, 3, finish

// A move with no button held. QTest only moves the cursor for these, which the
// offscreen platform does not turn into an event, so the event is sent directly.
void hover(QWidget *w, QPoint pos)
{
    QMouseEvent me(QEvent::MouseMove, pos, w->mapToGlobal(pos), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(w, &me);
}

QPoint rowPoint(int row)
{
    return {20, Palette::TopMargin + row * Palette::RowPitch + 20};
}

} // namespace

class TestObjectbar : public QObject {
    Q_OBJECT
    std::optional<TempAppFolder> m_app;
    std::optional<ScriptedDialogs> m_dialogs;
    // The palette sits in a plain window, as in a dock, so it can be resized freely.
    std::unique_ptr<QWidget> m_window;
    Objectbar *m_bar = nullptr;

    void site(const QString &type, const Uniques &u = {false, false, false, false, false})
    {
        UpdateAllowedAvailable(type, u[0], u[1], u[2], u[3], u[4]);
        m_bar->Repaint();
    }
    QPoint toPalette(QPoint canvasPos) const { return m_bar->canvas()->mapTo(m_bar, canvasPos); }
    void clickRow(int row)
    {
        hover(m_bar->canvas(), rowPoint(row));
        QTest::mouseClick(m_bar->canvas(), Qt::LeftButton, {}, rowPoint(row));
    }
    // Press, a small move that picks the item up (picked then runs), a move away and release.
    void dragTo(QPoint from, QPoint to, const std::function<void()> &picked = {})
    {
        QWidget *canvas = m_bar->canvas();
        QTest::mousePress(canvas, Qt::LeftButton, {}, from);
        QTest::mouseMove(canvas, from + QPoint(4, 4));
        if (picked)
            picked();
        QTest::mouseMove(canvas, to);
        QTest::mouseRelease(canvas, Qt::LeftButton, {}, to);
    }

private slots:
    void initTestCase()
    {
        for (int slot : LanguageSlots())
            SetLang(slot, DefaultLanguageString(slot));
        m_app.emplace(false);
        for (const QString &name : {u"AU_a"_s, u"AU_b"_s, u"BL_c"_s})
            WriteFile(m_app->file(u"packs/%1.pack"_s.arg(name)), PackBytes(0, 0, {PackRecord{14, 0, 0, 0, 0}}));
    }
    void init()
    {
        m_dialogs.emplace();
        ClearLoggedErrors();
        m_window = std::make_unique<QWidget>();
        m_window->resize(400, 440);
        m_bar = new Objectbar(m_window.get());
        m_bar->resize(200, 420);
        m_bar->Initilize();
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        site(u"AU1"_s);
    }
    void cleanup()
    {
        m_window.reset();
        m_bar = nullptr;
        m_dialogs.reset();
    }

    // Pressing a button shows its panel; ClickPanel ignores what no button has.
    void panelButtons()
    {
        QCOMPARE(m_bar->findChildren<QToolButton *>().size(), 7);
        QTest::mouseClick(m_bar->panelButton(3), Qt::LeftButton);
        m_bar->ClickPanel(7);
        m_bar->ClickPanel(-1);
        QCOMPARE(m_bar->CurrentPanel(), int16_t(3));
    }

    // Hover, then drag: press, move twice (the first move picks the item up) and release
    // outside the palette, as when dropping onto a document. Then a click on the same row.
    void hoverDragAndClick_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<Uniques>("uniques");
        QTest::addColumn<int>("panel");
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("hot");
        const Uniques none{false, false, false, false, false};
        const Uniques placed{true, true, false, false, false};
        QTest::newRow("free start") << "AU1" << none << 0 << 0 << 0;
        QTest::newRow("placed start") << "AU1" << placed << 0 << 0 << -1;
        QTest::newRow("free finish beside them") << "AU1" << placed << 0 << 1 << 1;
        QTest::newRow("BL tyres close up") << "BL3" << none << 3 << 2 << 35;
        QTest::newRow("below the list") << "AU1" << none << 0 << 5 << -1;
    }
    void hoverDragAndClick()
    {
        QFETCH(QString, type);
        QFETCH(Uniques, uniques);
        QFETCH(int, panel);
        QFETCH(int, row);
        QFETCH(int, hot);
        site(type, uniques);
        m_bar->ClickPanel(int16_t(panel));
        QSignalSpy drag(m_bar, &Objectbar::ItemDrag);
        QSignalSpy drop(m_bar, &Objectbar::ItemDropped);
        QSignalSpy click(m_bar, &Objectbar::ItemClicked);
        const QPoint outside(m_bar->canvas()->width() + 300, 40);
        hover(m_bar->canvas(), rowPoint(row));
        QCOMPARE(int(m_bar->HotItem()), hot);
        dragTo(rowPoint(row), outside, [&] {
            QCOMPARE(int(m_bar->DragItem()), hot);
            QCOMPARE(drag.size(), 0);
        });
        QCOMPARE(click.size(), 0); // released outside the list: no click
        // Y counts from the palette's top, above the list: the panel buttons sit there.
        const QPoint p = toPalette(outside);
        QVERIFY(p.y() > outside.y());
        QList<QList<QVariant>> expected;
        if (hot >= 0)
            expected = {{QVariant::fromValue(int16_t(hot)), QVariant::fromValue(int16_t(p.x())),
                         QVariant::fromValue(int16_t(p.y()))}};
        QCOMPARE(drag, expected);
        QCOMPARE(drop, expected);
        QCOMPARE(int(m_bar->DragItem()), -1);
        // A click chooses the hot item, or nothing when the row cannot be placed.
        clickRow(row);
        QCOMPARE(click, QList<QList<QVariant>>{{QVariant::fromValue(int16_t(hot))}});
        QCOMPARE(int(m_bar->SelectedItem()), hot);
    }

    // The pack panel reports a click with the kind chosen before, and drops packs by name.
    void packPanel()
    {
        m_bar->ClickPanel(2);
        clickRow(1);
        QCOMPARE(m_bar->SelectedItem(), int16_t(15));

        QTest::mouseClick(m_bar->panelButton(6), Qt::LeftButton);
        QCOMPARE(m_bar->Packs().Count(), 2); // the AU packs only
        QSignalSpy click(m_bar, &Objectbar::ItemClicked);
        QSignalSpy packDrop(m_bar, &Objectbar::PackDropped);
        QSignalSpy itemDrop(m_bar, &Objectbar::ItemDropped);
        hover(m_bar->canvas(), rowPoint(0));
        QCOMPARE(m_bar->HotItem(), int16_t(1));
        clickRow(0);
        QCOMPARE(click, QList<QList<QVariant>>{{QVariant::fromValue(int16_t(15))}});
        QCOMPARE(m_bar->SelectedItem(), int16_t(15));

        hover(m_bar->canvas(), rowPoint(1));
        dragTo(rowPoint(1), QPoint(-400, 90));
        QCOMPARE(itemDrop.size(), 0);
        const QPoint p = toPalette(QPoint(-400, 90));
        QCOMPARE(packDrop, (QList<QList<QVariant>>{{u"AU_b.pack"_s, QVariant::fromValue(int16_t(p.x())),
                                                    QVariant::fromValue(int16_t(p.y()))}}));

        // The BL site lists its own packs when the panel is shown again.
        site(u"BL3"_s);
        m_bar->ClickPanel(6);
        QCOMPARE(m_bar->Packs().Count(), 1);
        QCOMPARE(m_bar->Packs().Entry(1).FileName, u"BL_c.pack"_s);
    }

    void barDrag_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("x");
        QTest::addColumn<int>("reported");
        QTest::newRow("wider") << 150 << 30 << 180;
        QTest::newRow("capped at 200") << 150 << 80 << 200;
        QTest::newRow("never below 8") << 100 << -95 << 8;
    }
    void barDrag()
    {
        QFETCH(int, width);
        QFETCH(int, x);
        QFETCH(int, reported);
        m_bar->resize(width, 420);
        PaletteGrip *grip = m_bar->grip();
        QSignalSpy spy(m_bar, &Objectbar::BarDrag);
        QTest::mousePress(grip, Qt::LeftButton, {}, QPoint(3, 50));
        QTest::mouseMove(grip, QPoint(x, 50));
        QTest::mouseRelease(grip, Qt::LeftButton, {}, QPoint(x, 50));
        QCOMPARE(spy.size(), 1);
        QCOMPARE(spy.first().first().value<int16_t>(), int16_t(reported));
        QSignalSpy dbl(m_bar, &Objectbar::BarDblClicked);
        QTest::mouseDClick(grip, Qt::LeftButton, {}, QPoint(3, 50));
        QCOMPARE(dbl.size(), 1);
    }

    void scrollPositionsPerPanel()
    {
        QScrollBar *bar = m_bar->scrollBar();
        const int h = m_bar->canvas()->height();
        QVERIFY(h > 5 * 52 && h < 14 * 52);
        m_bar->ClickPanel(2); // 15 cones at an AU site
        QCOMPARE(bar->maximum(), 15 * 52 - h + 4);
        QCOMPARE(bar->pageStep(), h);
        bar->setValue(200);
        m_bar->ClickPanel(4); // 14 objects
        QCOMPARE(bar->value(), 0);
        QCOMPARE(bar->maximum(), 14 * 52 - h + 4);
        bar->setValue(100);
        m_bar->ClickPanel(0); // 5 rows fit: nothing to scroll
        QCOMPARE(bar->maximum(), 0);
        m_bar->ClickPanel(2);
        QCOMPARE(bar->value(), 200);
        // The list is scrolled: the row under y 10 is the fifth cone.
        hover(m_bar->canvas(), QPoint(20, 10));
        QCOMPARE(m_bar->HotItem(), int16_t(18));
        m_bar->ClickPanel(4);
        QCOMPARE(bar->value(), 100);
        QCOMPARE(m_bar->ScrollPosition(2), 200);
        // The wheel scrolls the list.
        QWheelEvent wheel(QPointF(20, 20), m_bar->canvas()->mapToGlobal(QPointF(20, 20)), QPoint(), QPoint(0, -120),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(m_bar->canvas(), &wheel);
        QVERIFY(bar->value() > 100);
        QCOMPARE(m_bar->ScrollPosition(4), bar->value());
    }
};

QTEST_MAIN(TestObjectbar)
#include "tst_objectbar.moc"
