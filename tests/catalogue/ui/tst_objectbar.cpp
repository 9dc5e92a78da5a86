// The palette widget driven by synthesized mouse events: hovering, dragging, dropping,
// clicking, and packs.

#include "base/Language.h"
#include "catalogue/ObjectKinds.h"
#include "catalogue/PaletteRows.h"
#include "catalogue/ui/Objectbar.h"
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
    // Press, a small move that picks the item up, a move away and release.
    void dragTo(QPoint from, QPoint to)
    {
        QWidget *canvas = m_bar->canvas();
        QTest::mousePress(canvas, Qt::LeftButton, {}, from);
        QTest::mouseMove(canvas, from + QPoint(4, 4));
        QTest::mouseMove(canvas, to);
        QTest::mouseRelease(canvas, Qt::LeftButton, {}, to);
    }

private slots:
    void initTestCase()
    {
        for (int slot : LanguageSlots())
            SetLang(slot, DefaultLanguageString(slot));
        m_app.emplace(false);
        for (const QString &name : {u"AU_a"_s, u"AU_b"_s})
            WriteFile(m_app->file(u"packs/%1.pack"_s.arg(name)), PackBytes(0, 0, {PackRecord{14, 0, 0, 0, 0}}));
    }
    void init()
    {
        m_dialogs.emplace();
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

    // Hover, then drag: press, move twice (the first move picks the item up) and release
    // outside the palette, as when dropping onto a document. Then a click on the same row.
    void hoverDragAndClick_data()
    {
        QTest::addColumn<Uniques>("uniques");
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("hot");
        const Uniques none{false, false, false, false, false};
        const Uniques placed{true, true, false, false, false};
        QTest::newRow("free start") << none << 0 << 0;
        QTest::newRow("placed start") << placed << 0 << -1;
    }
    void hoverDragAndClick()
    {
        QFETCH(Uniques, uniques);
        QFETCH(int, row);
        QFETCH(int, hot);
        site(u"AU1"_s, uniques);
        QSignalSpy drag(m_bar, &Objectbar::ItemDrag);
        QSignalSpy drop(m_bar, &Objectbar::ItemDropped);
        QSignalSpy click(m_bar, &Objectbar::ItemClicked);
        const QPoint outside(m_bar->canvas()->width() + 300, 40);
        hover(m_bar->canvas(), rowPoint(row));
        QCOMPARE(int(m_bar->HotItem()), hot);
        dragTo(rowPoint(row), outside);
        QCOMPARE(click.size(), 0); // released outside the list: no click
        // Y counts from the palette's top, above the list: the panel buttons sit there.
        const QPoint p = toPalette(outside);
        QList<QList<QVariant>> expected;
        if (hot >= 0)
            expected = {{QVariant::fromValue(int16_t(hot)), QVariant::fromValue(int16_t(p.x())),
                         QVariant::fromValue(int16_t(p.y()))}};
        QCOMPARE(drag, expected);
        QCOMPARE(drop, expected);
        // A click chooses the hot item, or nothing when the row cannot be placed.
        clickRow(row);
        QCOMPARE(click, QList<QList<QVariant>>{{QVariant::fromValue(int16_t(hot))}});
    }

    // The pack panel drops packs by name, never as an object.
    void packPanel()
    {
        QTest::mouseClick(m_bar->panelButton(6), Qt::LeftButton);
        QSignalSpy packDrop(m_bar, &Objectbar::PackDropped);
        QSignalSpy itemDrop(m_bar, &Objectbar::ItemDropped);
        hover(m_bar->canvas(), rowPoint(1));
        dragTo(rowPoint(1), QPoint(-400, 90));
        QCOMPARE(itemDrop.size(), 0);
        const QPoint p = toPalette(QPoint(-400, 90));
        QCOMPARE(packDrop, (QList<QList<QVariant>>{{u"AU_b.pack"_s, QVariant::fromValue(int16_t(p.x())),
                                                    QVariant::fromValue(int16_t(p.y()))}}));
    }

};

QTEST_MAIN(TestObjectbar)
#include "tst_objectbar.moc"
