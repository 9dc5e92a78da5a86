// The document window driven as a user drives it: keys, routing of the mouse, undo,
// view commands and paint.

#include "WindowFixture.h"

#include "core/LayoutDocument.h"

#include <QWheelEvent>
#include <cmath>

namespace {

// "Ctrl+Shift+A Del Num++": key clicks with their modifiers, one key sequence a token.
void keys(frmLayout &w, const QString &script)
{
    for (const QString &token : script.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const QKeyCombination k = QKeySequence::fromString(token)[0];
        QTest::keyClick(w.canvas(), k.key(), k.keyboardModifiers());
    }
}

void wheel(frmLayout &w, int delta, Qt::KeyboardModifiers mods)
{
    QWidget *c = w.canvas();
    QWheelEvent e(QPointF(100, 100), c->mapToGlobal(QPointF(100, 100)), QPoint(), QPoint(0, delta), Qt::NoButton,
                  mods, Qt::NoScrollPhase, false);
    QApplication::sendEvent(c, &e);
}

// Everything undo must bring back, keys and route numbers included (the selection is not
// part of a step).
QString fullState(const LayoutDocument &doc)
{
    QString out = describe(doc).remove(QLatin1Char('*'));
    for (const varnoObject &o : doc.Objects())
        out += QStringLiteral(" %1r%2").arg(o.Key()).arg(o.RouteIndex());
    return out + QStringLiteral(" laps %1 marshalls %2 flags %3%4%5%6%7").arg(doc.Laps()).arg(doc.MarshallCount())
                     .arg(doc.HasStart()).arg(doc.HasCheckpoint1()).arg(doc.HasCheckpoint2())
                     .arg(doc.HasCheckpoint3()).arg(doc.HasFinish());
}

// True when a pixel near p differs from the plain ground (small pictures have
// transparent middles).
bool paintedAround(const QImage &img, const QPoint &p)
{
    for (int dy = -4; dy <= 4; ++dy)
        for (int dx = -4; dx <= 4; ++dx)
            if (QColor(img.pixel(p + QPoint(dx, dy))) != FixtureGround)
                return true;
    return false;
}

using Change = std::function<void(frmLayout &, WindowFixture &)>;

} // namespace

Q_DECLARE_METATYPE(Change)

class TestLayoutWindow : public QObject {
    Q_OBJECT
    std::optional<WindowFixture> m_fx;
    std::unique_ptr<frmLayout> m_w;

    // Cone A at 200,200 (selected), cone B at 300,200, pointer at 400,300.
    void standard()
    {
        addTo(*m_w, 20, 200, 200, 0, 0, true);
        addTo(*m_w, 20, 300, 200);
        m_w->PointerMove(Qt::NoButton, Qt::NoModifier, viewOf(*m_w, 400, 300));
    }

private slots:
    void init()
    {
        m_fx.emplace();
        m_w = m_fx->window(QStringLiteral("AU1_window.lyt"));
        QVERIFY(m_w);
    }
    void cleanup()
    {
        m_w.reset();
        m_fx.reset();
    }

    // Cone A at 200,200 (selected), cone B at 300,200, pointer at 400,300, then the keys.
    void keyTable_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<QString>("objects"); // empty: unchanged
        QTest::addColumn<float>("zoom");      // 0: unchanged; -87: fitted to the width
        QTest::addColumn<int>("tool");
        QTest::addColumn<int>("spacing");
        auto row = [](const char *name, const char *script, const char *objects, float zoom = 0, int tool = 0,
                      int spacing = 20) {
            QTest::newRow(name) << QString(script) << QString(objects) << zoom << tool << spacing;
        };
        const char *bOnly = "20@300,200 a0 w0";
        row("paste before any copy deselects", "Ctrl+V", "20@200,200 a0 w0; 20@300,200 a0 w0");
        row("copy, paste at the pointer", "Ctrl+C Ctrl+V", "20@200,200 a0 w0; 20@300,200 a0 w0; 20@400,300 a0 w0*");
        row("a group is pasted centred on the pointer", "Ctrl+A Ctrl+C Ctrl+V",
            "20@200,200 a0 w0; 20@300,200 a0 w0; 20@350,300 a0 w0*; 20@450,300 a0 w0*");
        row("Delete", "Del", bOnly);
        row("duplicate one: at the pointer", "Ctrl+D", "20@200,200 a0 w0; 20@300,200 a0 w0; 20@400,300 a0 w0*");
        row("duplicate a group: 50 right and down", "Ctrl+A Ctrl+D",
            "20@200,200 a0 w0; 20@300,200 a0 w0; 20@250,250 a0 w0*; 20@350,250 a0 w0*");
        row("Ctrl+W fits the width", "Ctrl+W", "", -87);
        row("keypad +, = with any modifier", "Num++ Shift+=", "", 4);
        row(", narrows the line", ", <", "", 0, 0, 18);
        row("arrow nudges by one", "Right Up", "20@201,199 a0 w0*; 20@300,200 a0 w0");
        row("Shift+arrow by ten", "Shift+Down", "20@200,210 a0 w0*; 20@300,200 a0 w0");
        row("Ctrl+Y redoes", "Del Alt+Backspace Ctrl+Y", bOnly);
        row("Ctrl+Z does not undo", "Del Ctrl+Z", bOnly, 0, 6);
        row("Escape clears the selection before it leaves a tool", "Ctrl+Z Esc", "20@200,200 a0 w0; 20@300,200 a0 w0",
            0, 6);
    }
    void keyTable()
    {
        QFETCH(QString, script);
        QFETCH(QString, objects);
        QFETCH(float, zoom);
        QFETCH(int, tool);
        QFETCH(int, spacing);
        standard();
        keys(*m_w, script);
        QCOMPARE(describe(m_w->document()), objects.isEmpty() ? "20@200,200 a0 w0*; 20@300,200 a0 w0" : objects);
        const ViewGeometry &v = m_w->view();
        QCOMPARE(m_w->Zoom(), zoom == 0.f ? 1.f
                              : zoom == -87.f ? float(v.clientWidth()) / 1000.f : zoom);
        QCOMPARE(m_w->Tool(), tool);
        QCOMPARE(int(m_w->LineSpacing()), spacing);
        QVERIFY2(LoggedErrors().isEmpty(), qPrintable(LoggedErrors().join('\n')));
    }

    // The clipboard is the program's: a BL3 window pastes what AU1 copied, only the kinds
    // its site has, and words the refusal.
    void pasteIntoTheOtherSite()
    {
        addTo(*m_w, 20, 200, 200, 0, 0, true); // cone: both sites
        addTo(*m_w, 44, 260, 200, 0, 0, true); // post: AU only
        keys(*m_w, "Ctrl+C");
        m_w.reset(); // the clipboard outlives the window it came from
        auto bl = m_fx->window(QStringLiteral("BL3_other.lyt"));
        QVERIFY(bl);
        QStringList refusals;
        connect(bl.get(), &frmLayout::Message, this,
                [&](bool refusal, int16_t, int16_t, const QString &t) { if (refusal) refusals << t; });
        bl->PointerMove(Qt::NoButton, Qt::NoModifier, viewOf(*bl, 500, 400));
        keys(*bl, "Ctrl+V");
        QCOMPARE(describe(bl->document()), QStringLiteral("20@470,400 a0 w0*"));
        QCOMPARE(refusals, QStringList{"Object not allowed in this layout type, cannot add"});
    }

    // Tools are tested on their own, and the undo rows drag through the window; here the
    // middle button pans instead of reaching the tool.
    void middleDragPans()
    {
        standard();
        m_w->view().setScroll(0, 50);
        drag(*m_w, viewOf(*m_w, 500, 500), viewOf(*m_w, 520, 500), Qt::MiddleButton);
        QCOMPARE(m_w->view().ScrollX(), 30);
        QCOMPARE(describe(m_w->document()), QStringLiteral("20@200,200 a0 w0*; 20@300,200 a0 w0"));
    }

    // Each change through the window is one step; undo brings back everything, the clean
    // state included, and redo the change.
    void undoRedo_data()
    {
        QTest::addColumn<Change>("change");
        auto row = [](const char *name, Change c) { QTest::newRow(name) << c; };
        auto keyed = [](const char *name, QString script, QPoint at = {}) {
            QTest::newRow(name) << Change([=](frmLayout &w, WindowFixture &) {
                if (!at.isNull())
                    click(w, viewOf(w, at.x(), at.y()));
                keys(w, script);
            });
        };
        row("add", [](frmLayout &w, WindowFixture &) { w.DropKind(28, viewOf(w, 50, 50)); });
        keyed("remove checker", "Del", {300, 300});
        row("move", [](frmLayout &w, WindowFixture &) { drag(w, viewOf(w, 200, 200), viewOf(w, 260, 260)); });
        row("flip", [](frmLayout &w, WindowFixture &) { w.SelectionFlip(true); });
        row("change kind", [](frmLayout &w, WindowFixture &) { w.ObjectChange(59); });
        row("width", [](frmLayout &w, WindowFixture &) { click(w, viewOf(w, 400, 200)), w.ObjectWidth(20); });
        row("laps", [](frmLayout &w, WindowFixture &) { w.setLaps(3), w.setLaps(4); });
        keyed("paste", "Ctrl+C Ctrl+V");
        row("pack", [](frmLayout &w, WindowFixture &fx) {
            const QList<PackRecord> records{{20, 0, 0, 0, 0}, {59, 40, 20, 0, 10}};
            WriteFile(fx.app.file(QStringLiteral("packs/AU_two.pack")), PackBytes(40, 20, records));
            w.DropPack(QStringLiteral("AU_two.pack"), viewOf(w, 700, 500));
        });
    }
    void undoRedo()
    {
        QFETCH(Change, change);
        LayoutDocument &doc = m_w->document();
        addTo(*m_w, 20, 200, 200, 30, 0, true);
        addTo(*m_w, 59, 300, 300, 0, 10);
        addTo(*m_w, 59, 320, 300, 0, 10);
        addTo(*m_w, 1, 400, 200, 0, 12);
        addTo(*m_w, 20, 500, 200, -45, 0, true);
        m_w->PointerMove(Qt::NoButton, Qt::NoModifier, viewOf(*m_w, 600, 600));
        const QString start = fullState(doc);
        change(*m_w, *m_fx);
        const QString after = fullState(doc);
        QVERIFY2(after != start, "the change did nothing");
        QCOMPARE(m_w->undoStack()->count(), 1);
        m_w->Undo();
        QCOMPARE(fullState(doc), start);
        QVERIFY(!m_w->Edited());
        m_w->Redo();
        QCOMPARE(fullState(doc), after);
        QVERIFY2(LoggedErrors().isEmpty(), qPrintable(LoggedErrors().join('\n')));
    }

    // Typed angles and nudges of one selection undo together; a new selection starts a
    // new step even without a click in between.
    void seriesMergeOnlyOnTheSameObjects()
    {
        standard();
        m_w->ObjectRotate(10);
        m_w->ObjectRotate(20);
        keys(*m_w, "Ctrl+A");
        m_w->ObjectRotate(30);
        keys(*m_w, "Right Right");
        QCOMPARE(m_w->undoStack()->count(), 3);
        m_w->Undo();
        m_w->Undo();
        QCOMPARE(describe(m_w->document()), QStringLiteral("20@200,200 a20 w0*; 20@300,200 a0 w0*"));
    }

    // Undo back to the saved state needs no question on close; before it, or after, does.
    void savedPointIsTheCleanPoint()
    {
        m_fx->dialogs.saveAnswers << m_fx->layoutPath(QStringLiteral("AU1_saved.lyt"));
        addTo(*m_w, 20, 200, 200, 0, 0, true);
        keys(*m_w, "Right");
        QVERIFY(m_w->LayoutSave(false));
        QVERIFY(m_w->QueryClose());
        QVERIFY(m_fx->dialogs.messages.isEmpty());
        keys(*m_w, "Right");
        m_w->Undo();
        QVERIFY(!m_w->Edited());
        m_w->Undo();
        m_fx->dialogs.answers << MsgResult::Cancel;
        QVERIFY(!m_w->QueryClose()); // only redo steps are left, and they are not in the file
    }

    void viewCommands()
    {
        // Ctrl with the wheel doubles the zoom; a plain wheel scrolls.
        wheel(*m_w, 120, Qt::ControlModifier);
        const int32_t before = m_w->view().ScrollY();
        wheel(*m_w, -120, Qt::NoModifier);
        QVERIFY(m_w->view().ScrollY() > before);
        QCOMPARE(m_w->Zoom(), 2.0f);

        // Zoom to the selection fits its box (with a margin) and centres it.
        addTo(*m_w, 20, 400, 300, 0, 0, true);
        addTo(*m_w, 20, 600, 400, 0, 0, true);
        m_w->ZoomToSelection();
        const ViewGeometry &v = m_w->view();
        QVERIFY(m_w->Zoom() > 1.0f);
        int32_t cx = v.clientWidth() / 2, cy = v.clientHeight() / 2;
        m_w->view().viewToLayout(cx, cy);
        QVERIFY(qAbs(cx - 500) <= 1 && qAbs(cy - 350) <= 1);
        for (const QPoint &p : {viewOf(*m_w, 400, 300), viewOf(*m_w, 600, 400)})
            QVERIFY(QRect(0, 0, v.clientWidth(), v.clientHeight()).contains(p));
    }

    // A new layout fits the window as it grows, until the user chooses a zoom.
    void firstFitLastsUntilTheUserZooms()
    {
        for (const QString zoom : {"", "Ctrl+wheel", "+"}) {
            frmLayout w;
            w.resize(400, 300);
            QVERIFY(w.Initilize(m_fx->layoutPath("AU1_fit.lyt")));
            w.show();
            QVERIFY(QTest::qWaitForWindowExposed(&w));
            if (zoom == "+")
                keys(w, zoom);
            else if (!zoom.isEmpty())
                wheel(w, 120, Qt::ControlModifier);
            const float before = w.Zoom();
            w.resize(800, 600);
            QVERIFY2((w.Zoom() != before) == zoom.isEmpty(), qPrintable(zoom));
        }
    }

    // Go to start without a start of its own centres the type's marker (AU2: 831, 549),
    // clamped at the edge; the canvas shows the ground and the marker, and a start of the
    // layout's own hides the marker (objects are drawn as tst_layoutpainter shows).
    void goToStartAndPaint()
    {
        auto au2 = m_fx->window(QStringLiteral("AU2_paint.lyt"));
        QVERIFY(au2);
        au2->GoToStart();
        const ViewGeometry &v = au2->view();
        QCOMPARE(v.ScrollX(), std::min(int32_t(std::lround(831 - v.VisibleWidth() / 2.0)), 1000 - v.VisibleWidth()));
        QCOMPARE(v.ScrollY(), std::min(int32_t(std::lround(549 - v.VisibleHeight() / 2.0)), 800 - v.VisibleHeight()));

        au2->setZoom(0.5f); // the whole picture, the marker included, in the window
        const QPoint marker = viewOf(*au2, 831, 549);
        QImage img = au2->canvas()->grab().toImage();
        QCOMPARE(QColor(img.pixel(viewOf(*au2, 100, 700))), FixtureGround);
        QVERIFY(paintedAround(img, marker));
        addTo(*au2, 0, 100, 100);
        img = au2->canvas()->grab().toImage();
        QVERIFY(!paintedAround(img, marker));
    }
};

QTEST_MAIN(TestLayoutWindow)
#include "tst_layoutwindow.moc"
