// The document window driven as a user drives it: keys, mouse tools, undo and paint.

#include "WindowFixture.h"
#include "support/DocumentFixture.h"

#include "imaging/cBitmap.h"
#include "core/LayoutDocument.h"

#include <QSignalSpy>
#include <QWheelEvent>
#include <cmath>

namespace {

// "Ctrl+Shift+A Del Num+Plus": key clicks with their modifiers.
void keys(frmLayout &w, const QString &script)
{
    static const QHash<QString, Qt::Key> names{
        {"Del", Qt::Key_Delete},   {"Left", Qt::Key_Left},   {"Right", Qt::Key_Right},
        {"Up", Qt::Key_Up},        {"Down", Qt::Key_Down},   {"Plus", Qt::Key_Plus},
        {"Equal", Qt::Key_Equal},  {"Minus", Qt::Key_Minus}, {"Comma", Qt::Key_Comma},
        {"Period", Qt::Key_Period}, {"Less", Qt::Key_Less},  {"Backspace", Qt::Key_Backspace},
        {"Esc", Qt::Key_Escape}};
    for (const QString &token : script.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        Qt::KeyboardModifiers mods;
        const QStringList parts = token.split(QLatin1Char('+'));
        for (int i = 0; i < parts.size() - 1; ++i) {
            const QString &m = parts[i];
            mods |= m == "Ctrl" ? Qt::ControlModifier : m == "Shift" ? Qt::ShiftModifier
                  : m == "Alt"  ? Qt::AltModifier     : Qt::KeypadModifier;
        }
        const QString &k = parts.last();
        const Qt::Key key = names.contains(k) ? names.value(k) : Qt::Key(Qt::Key_A + (k.at(0).unicode() - 'A'));
        QTest::keyClick(w.canvas(), key, mods);
    }
}

void wheel(frmLayout &w, int delta, Qt::KeyboardModifiers mods)
{
    QWidget *c = w.canvas();
    QWheelEvent e(QPointF(100, 100), c->mapToGlobal(QPointF(100, 100)), QPoint(), QPoint(0, delta), Qt::NoButton,
                  mods, Qt::NoScrollPhase, false);
    QApplication::sendEvent(c, &e);
}

// Everything undo must bring back, keys and route numbers included.
QString fullState(const LayoutDocument &doc)
{
    QStringList out;
    for (const varnoObject &o : doc.Objects())
        out << QStringLiteral("%1=%2@%3,%4a%5w%6r%7").arg(o.Key()).arg(o.ID()).arg(o.X()).arg(o.Y()).arg(o.Angle())
                   .arg(o.Width()).arg(o.RouteIndex());
    out << QStringLiteral("laps %1 marshalls %2 flags %3%4%5%6%7")
               .arg(doc.Laps()).arg(doc.MarshallCount()).arg(doc.HasStart()).arg(doc.HasCheckpoint1())
               .arg(doc.HasCheckpoint2()).arg(doc.HasCheckpoint3()).arg(doc.HasFinish());
    return out.join(QStringLiteral("; "));
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

} // namespace

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

    // A layout whose background or type is wrong still opens (with no bounds, so nothing
    // can be placed); only a file that cannot be read keeps its tab from opening.
    void initilize_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("bytes"); // empty: no file yet
        QTest::addColumn<bool>("background");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<QString>("message");
        const QString unsupported = "Unsupported layout. Currently only AU1, AU2, AU3, AU4 and BL3 are supported.";
        const QByteArray cone = lytHeader(251, 1, 1) + lytRecord(0, -13224, 255, 0, 29, 128);
        QTest::newRow("new AU2") << "AU2_fresh.lyt" << QByteArray() << true << true << "";
        QTest::newRow("unknown type") << "XYZ_fresh.lyt" << QByteArray() << true << true
                                      << ErrorBoxText("XYZ\r\n" + unsupported);
        QTest::newRow("unknown type with objects")
            << "XYZ_full.lyt" << cone << true << false
            << ErrorBoxText("5: XYZ_full.lyt\r\n\r\n" + unsupported + " in frmLayout.LayoutOpen");
        QTest::newRow("background missing") << "AU1_bare.lyt" << cone << false << true << "BG\r\n\r\nNot found!?";
    }
    void initilize()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, bytes);
        QFETCH(bool, background);
        QFETCH(bool, ok);
        QFETCH(QString, message);
        if (!bytes.isEmpty())
            WriteFile(m_fx->layoutPath(name), bytes);
        if (!background) {
            options().AU1 = QString();
            message.replace("BG", QDir::toNativeSeparators(m_fx->app.file("backgrounds/AU1.png")));
            QFile::remove(m_fx->app.file("backgrounds/AU1.png"));
        }
        frmLayout w;
        w.resize(400, 300);
        QCOMPARE(w.Initilize(m_fx->layoutPath(name)), ok);
        QCOMPARE(m_fx->dialogs.messages.isEmpty() ? QString() : m_fx->dialogs.messages.last().text, message);
        if (!ok)
            return;
        QCOMPARE(w.LayoutType(), name.left(3));
        QCOMPARE(w.ObjectCount(), int16_t(0));
        QVERIFY(!w.Edited());
        // Without bounds it paints, zooms and refuses what is dropped, and stays usable.
        w.show();
        w.setZoom(87);
        w.GoToStart();
        QVERIFY(!w.grab().isNull());
        w.ObjectAdd(20, 10, 10, 0, 0, false, false);
        QCOMPARE(w.ObjectCount(), int16_t(message.isEmpty() ? 1 : 0)); // the rows with a message have no bounds
    }

    void keyTable_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<QString>("objects");
        QTest::addColumn<float>("zoom"); // 0: unchanged; -87 / -72: fitted to width / height
        QTest::addColumn<int>("tool");
        QTest::addColumn<int>("spacing");
        const QString start = "20@200,200 a0 w0*; 20@300,200 a0 w0";
        QTest::newRow("Ctrl+A") << "Ctrl+A" << "20@200,200 a0 w0*; 20@300,200 a0 w0*" << 0.f << 0 << 20;
        QTest::newRow("Ctrl+Shift+A does nothing") << "Ctrl+Shift+A" << start << 0.f << 0 << 20;
        QTest::newRow("paste before any copy deselects")
            << "Ctrl+V" << "20@200,200 a0 w0; 20@300,200 a0 w0" << 0.f << 0 << 20;
        QTest::newRow("copy, paste at the pointer")
            << "Ctrl+C Ctrl+V" << "20@200,200 a0 w0; 20@300,200 a0 w0; 20@400,300 a0 w0*" << 0.f << 0 << 20;
        QTest::newRow("a group is pasted centred on the pointer")
            << "Ctrl+A Ctrl+C Ctrl+V"
            << "20@200,200 a0 w0; 20@300,200 a0 w0; 20@350,300 a0 w0*; 20@450,300 a0 w0*" << 0.f << 0 << 20;
        QTest::newRow("Delete") << "Del" << "20@300,200 a0 w0" << 0.f << 0 << 20;
        QTest::newRow("Ctrl+Shift+Delete still deletes") << "Ctrl+Shift+Del" << "20@300,200 a0 w0" << 0.f << 0 << 20;
        QTest::newRow("duplicate one: at the pointer")
            << "Ctrl+D" << "20@200,200 a0 w0; 20@300,200 a0 w0; 20@400,300 a0 w0*" << 0.f << 0 << 20;
        QTest::newRow("duplicate a group: 50 right and down")
            << "Ctrl+A Ctrl+D"
            << "20@200,200 a0 w0; 20@300,200 a0 w0; 20@250,250 a0 w0*; 20@350,250 a0 w0*" << 0.f << 0 << 20;
        QTest::newRow("Ctrl+W fits the width") << "Ctrl+W" << start << -87.f << 0 << 20;
        QTest::newRow("Ctrl+H fits the height") << "Ctrl+H" << start << -72.f << 0 << 20;
        QTest::newRow("keypad +, = with any modifier") << "Num+Plus Shift+Equal" << start << 4.f << 0 << 20;
        QTest::newRow("- key, keypad -") << "Minus Num+Minus" << start << .25f << 0 << 20;
        QTest::newRow(", narrows the line") << "Comma Less" << start << 0.f << 0 << 18;
        QTest::newRow(". widens the line") << "Period Ctrl+Period" << start << 0.f << 0 << 22;
        QTest::newRow("arrow nudges by one") << "Right Up" << "20@201,199 a0 w0*; 20@300,200 a0 w0" << 0.f << 0 << 20;
        QTest::newRow("Shift+arrow by ten") << "Shift+Down" << "20@200,210 a0 w0*; 20@300,200 a0 w0" << 0.f << 0 << 20;
        QTest::newRow("Ctrl+Y redoes") << "Del Alt+Backspace Ctrl+Y" << "20@300,200 a0 w0" << 0.f << 0 << 20;
        QTest::newRow("Ctrl+Shift+Z redoes") << "Del Alt+Backspace Ctrl+Shift+Z" << "20@300,200 a0 w0" << 0.f << 0 << 20;
        QTest::newRow("Ctrl+Z does not undo") << "Del Ctrl+Z" << "20@300,200 a0 w0" << 0.f << 6 << 20;
        QTest::newRow("Escape clears the selection before it leaves a tool")
            << "Ctrl+Z Esc" << "20@200,200 a0 w0; 20@300,200 a0 w0" << 0.f << 6 << 20;
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
        QCOMPARE(describe(m_w->document()), objects);
        const ViewGeometry &v = m_w->view();
        const float expectedZoom = zoom == 0.f    ? 1.f
            : zoom == -87.f ? float(v.clientWidth()) / 1000.f
            : zoom == -72.f ? float(v.clientHeight()) / 800.f
                            : zoom;
        QCOMPARE(m_w->Zoom(), expectedZoom);
        QCOMPARE(m_w->Tool(), tool);
        QCOMPARE(int(m_w->LineSpacing()), spacing);
        QVERIFY2(LoggedErrors().isEmpty(), qPrintable(LoggedErrors().join('\n')));
    }

    void deleteOnEmptySelectionStillNotifies()
    {
        addTo(*m_w, 20, 200, 200);
        QSignalSpy objectUpdated(m_w.get(), &frmLayout::ObjectUpdated);
        keys(*m_w, "Del");
        QCOMPARE(m_w->ObjectCount(), int16_t(1));
        QCOMPARE(objectUpdated.count(), 1);
        QVERIFY(!m_w->undoStack()->canUndo());
    }

    // The clipboard is the program's: a BL3 window pastes what AU1 copied, and only the
    // kinds its site has.
    void pasteIntoTheOtherSite()
    {
        addTo(*m_w, 20, 200, 200, 0, 0, true); // cone: both sites
        addTo(*m_w, 44, 260, 200, 0, 0, true); // post: AU only
        keys(*m_w, "Ctrl+C");
        m_w.reset(); // the clipboard outlives the window it came from
        auto bl = m_fx->window(QStringLiteral("BL3_other.lyt"));
        QVERIFY(bl);
        QStringList messages;
        connect(bl.get(), &frmLayout::Message, this, [&](bool refusal, int16_t, int16_t, const QString &t) {
            if (refusal)
                messages << t;
        });
        bl->PointerMove(Qt::NoButton, Qt::NoModifier, viewOf(*bl, 500, 400));
        keys(*bl, "Ctrl+V");
        QCOMPARE(describe(bl->document()), QStringLiteral("20@470,400 a0 w0*"));
        QCOMPARE(messages, QStringList{"Object not allowed in this layout type, cannot add"});
    }

    // Tools are tested on their own; here only what the window adds: the routing of the
    // mouse, and panning with the middle button.
    void mouseReachesTheToolAndMiddleDragPans()
    {
        standard();
        drag(*m_w, viewOf(*m_w, 200, 200), viewOf(*m_w, 240, 230));
        QCOMPARE(describe(m_w->document()), QStringLiteral("20@240,230 a0 w0*; 20@300,200 a0 w0"));
        m_w->view().setScroll(0, 50);
        drag(*m_w, viewOf(*m_w, 500, 500), viewOf(*m_w, 520, 500), Qt::MiddleButton);
        QCOMPARE(m_w->view().ScrollX(), 30);
        QCOMPARE(describe(m_w->document()), QStringLiteral("20@240,230 a0 w0*; 20@300,200 a0 w0"));
        QCOMPARE(m_w->undoStack()->count(), 1);
    }

    void lineTool()
    {
        standard();
        QStringList hints;
        connect(m_w.get(), &frmLayout::Message, this,
                [&](bool refusal, int16_t, int16_t, const QString &t) { if (!refusal) hints << t; });
        keys(*m_w, "Ctrl+L");
        QCOMPARE(hints.last(), "Click and drag to create a line of objects \u2014 spacing 20 (5.7m)");
        // Pressed on the source, the row starts at the source, which is its first member.
        // Ctrl keeps it straight down; a spacing key replays the move without Ctrl.
        const auto ctrl = Qt::ControlModifier;
        mouse(*m_w, QEvent::MouseButtonPress, viewOf(*m_w, 201, 201), Qt::LeftButton, Qt::LeftButton, ctrl);
        mouse(*m_w, QEvent::MouseMove, viewOf(*m_w, 203, 265), Qt::NoButton, Qt::LeftButton, ctrl);
        keys(*m_w, "Period");
        QCOMPARE(hints.last(), "Hold Ctrl to constrain to 15\u00b0 increments, use < and > to change spacing "
                               "\u2014 spacing 21 (6.0m), copies: 3");
        mouse(*m_w, QEvent::MouseButtonRelease, viewOf(*m_w, 203, 265), Qt::LeftButton, Qt::NoButton);
        // A row from elsewhere that reaches the source leaves its slot to it.
        drag(*m_w, viewOf(*m_w, 200, 158), viewOf(*m_w, 200, 200));
        QCOMPARE(describe(m_w->document()).section(QStringLiteral("; "), 2),
                 QStringLiteral("20@201,221 a0 w0; 20@202,242 a0 w0; 20@203,263 a0 w0; 20@200,158 a0 w0; "
                                "20@200,179 a0 w0"));
        QCOMPARE(m_w->undoStack()->count(), 2);
        // Without a single selected object a press picks one instead.
        keys(*m_w, "Ctrl+A");
        click(*m_w, viewOf(*m_w, 300, 200));
        QCOMPARE(m_w->document().Selection().size(), 1);
        QCOMPARE(m_w->undoStack()->count(), 2);
        // Outside the line tool the spacing keys still say the new spacing.
        keys(*m_w, "Esc Esc Comma");
        QCOMPARE(hints.last(), QStringLiteral("Object line: spacing 20 (5.7m)"));
    }

    void undoRedo_data()
    {
        QTest::addColumn<QString>("change");
        for (const char *c : {"add", "remove", "remove checker", "move", "nudge", "rotate", "flip", "change kind",
                              "width", "laps", "paste", "duplicate", "pack", "line"})
            QTest::newRow(c) << QString::fromLatin1(c);
    }
    void undoRedo()
    {
        QFETCH(QString, change);
        LayoutDocument &doc = m_w->document();
        addTo(*m_w, 20, 200, 200, 30, 0, true);
        addTo(*m_w, 59, 300, 300, 0, 10);
        addTo(*m_w, 59, 320, 300, 0, 10);
        addTo(*m_w, 1, 400, 200, 0, 12);
        addTo(*m_w, 20, 500, 200, -45, 0, true);
        m_w->PointerMove(Qt::NoButton, Qt::NoModifier, viewOf(*m_w, 600, 600));
        const QString start = fullState(doc);
        if (change == "add")
            m_w->DropKind(28, viewOf(*m_w, 50, 50));
        else if (change == "remove")
            keys(*m_w, "Del");
        else if (change == "remove checker") {
            click(*m_w, viewOf(*m_w, 300, 300));
            keys(*m_w, "Del");
        } else if (change == "move")
            drag(*m_w, viewOf(*m_w, 200, 200), viewOf(*m_w, 260, 260));
        else if (change == "nudge")
            keys(*m_w, "Left Left Shift+Up");
        else if (change == "rotate") {
            m_w->ObjectRotate(15);
            m_w->ObjectRotate(30);
        } else if (change == "flip")
            m_w->SelectionFlip(true);
        else if (change == "change kind")
            m_w->ObjectChange(59);
        else if (change == "width") {
            click(*m_w, viewOf(*m_w, 400, 200));
            m_w->ObjectWidth(20);
        } else if (change == "laps") {
            m_w->setLaps(3);
            m_w->setLaps(4);
        } else if (change == "paste")
            keys(*m_w, "Ctrl+C Ctrl+V");
        else if (change == "duplicate")
            keys(*m_w, "Ctrl+D");
        else if (change == "pack") {
            QList<PackRecord> records{{20, 0, 0, 0, 0}, {59, 40, 20, 0, 10}};
            WriteFile(m_fx->app.file(QStringLiteral("packs/AU_two.pack")), PackBytes(40, 20, records));
            m_w->DropPack(QStringLiteral("AU_two.pack"), viewOf(*m_w, 700, 500));
        } else if (change == "line") {
            click(*m_w, viewOf(*m_w, 500, 200));
            m_w->setTool(ToolLine);
            drag(*m_w, viewOf(*m_w, 100, 700), viewOf(*m_w, 200, 700));
        }
        const QString after = fullState(doc);
        QVERIFY2(after != start, "the change did nothing");
        QCOMPARE(m_w->undoStack()->count(), 1);
        QVERIFY(m_w->Edited());
        m_w->Undo();
        QCOMPARE(fullState(doc), start);
        QVERIFY(!m_w->Edited());
        m_w->Redo();
        QCOMPARE(fullState(doc), after);
        QVERIFY(m_w->Edited());
        QVERIFY2(LoggedErrors().isEmpty(), qPrintable(LoggedErrors().join('\n')));
    }

    // Typed angles and nudges of one selection undo together; a new selection starts
    // a new step even without a click in between.
    void seriesMergeOnlyOnTheSameObjects()
    {
        standard();
        m_w->ObjectRotate(10);
        m_w->ObjectRotate(20);
        QCOMPARE(m_w->undoStack()->count(), 1);
        keys(*m_w, "Ctrl+A");
        m_w->ObjectRotate(30);
        QCOMPARE(m_w->undoStack()->count(), 2);
        keys(*m_w, "Right Right");
        QCOMPARE(m_w->undoStack()->count(), 3);
        m_w->Undo();
        m_w->Undo();
        QCOMPARE(describe(m_w->document()), QStringLiteral("20@200,200 a20 w0*; 20@300,200 a0 w0*"));
    }

    void savedPointIsTheCleanPoint()
    {
        m_fx->dialogs.saveAnswers << m_fx->layoutPath(QStringLiteral("AU1_saved.lyt"));
        addTo(*m_w, 20, 200, 200, 0, 0, true);
        keys(*m_w, "Right");
        QVERIFY(m_w->Edited());
        QVERIFY(m_w->LayoutSave(false));
        QVERIFY(!m_w->Edited());
        QVERIFY(m_w->QueryClose()); // nothing to lose: no question
        QVERIFY(m_fx->dialogs.messages.isEmpty());
        keys(*m_w, "Right");
        m_fx->dialogs.answers << MsgResult::Cancel;
        QVERIFY(!m_w->QueryClose());
        m_w->Undo();
        QVERIFY(!m_w->Edited()); // back at the saved point
        m_w->Undo();
        QVERIFY(m_w->Edited()); // before the saved point
        m_fx->dialogs.answers << MsgResult::Cancel;
        QVERIFY(!m_w->QueryClose()); // only redo steps are left, and they are not in the file
    }

    // A new layout fits the window as it grows, until the user chooses a zoom.
    void firstFitLastsUntilTheUserZooms_data()
    {
        QTest::addColumn<QString>("zoom");
        QTest::newRow("no zoom") << "";
        QTest::newRow("Ctrl+wheel") << "Ctrl";
        QTest::newRow("plus key") << "Plus";
    }
    void firstFitLastsUntilTheUserZooms()
    {
        QFETCH(QString, zoom);
        frmLayout w;
        w.resize(400, 300);
        QVERIFY(w.Initilize(m_fx->layoutPath("AU1_fit.lyt")));
        w.show();
        QVERIFY(QTest::qWaitForWindowExposed(&w));
        if (zoom == "Plus")
            keys(w, "Plus");
        else if (!zoom.isEmpty())
            wheel(w, 120, zoom == "Ctrl" ? Qt::ControlModifier : Qt::ShiftModifier);
        const float before = w.Zoom();
        w.resize(800, 600);
        QCOMPARE(w.Zoom() != before, zoom.isEmpty());
    }

    void viewCommands()
    {
        // Ctrl or Shift with the wheel doubles or halves the zoom; a plain wheel scrolls.
        wheel(*m_w, 120, Qt::ControlModifier);
        QCOMPARE(m_w->Zoom(), 2.0f);
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

    void goToStartAndBackground()
    {
        auto au2 = m_fx->window(QStringLiteral("AU2_start.lyt"));
        QVERIFY(au2);
        au2->GoToStart(); // no start of its own: the type's marker at 831, 549
        const ViewGeometry &v = au2->view();
        QCOMPARE(v.ScrollX(), std::min(int32_t(std::lround(831 - v.VisibleWidth() / 2.0)), 1000 - v.VisibleWidth()));
        QCOMPARE(v.ScrollY(), std::min(int32_t(std::lround(549 - v.VisibleHeight() / 2.0)), 800 - v.VisibleHeight()));
        addTo(*au2, 0, 200, 150);
        au2->GoToStart();
        QCOMPARE(v.ScrollX(), 0); // centring on 200 clamps at the left edge

        // Another picture from the backgrounds folder: new bounds, the same scale.
        QImage big(2000, 1600, QImage::Format_RGB32);
        big.fill(Qt::gray);
        big.save(m_fx->app.file(QStringLiteral("backgrounds/wide.png")));
        const float scale = au2->document().BackgroundScale();
        au2->setBGName(QStringLiteral("wide.png"));
        QCOMPARE(au2->BGName(), QDir::toNativeSeparators(m_fx->app.file(QStringLiteral("backgrounds/wide.png"))));
        QCOMPARE(au2->document().BoundsWidth(), 2000);
        QCOMPARE(v.backgroundWidth(), 2000);
        QCOMPARE(au2->document().BackgroundScale(), scale);
    }

    void paint()
    {
        auto au2 = m_fx->window(QStringLiteral("AU2_paint.lyt"));
        QVERIFY(au2);
        au2->setZoom(0.5f); // the whole picture, the marker included, in the window
        auto grab = [&] { return au2->canvas()->grab().toImage(); };
        const QPoint ground = viewOf(*au2, 100, 700);
        const QPoint marker = viewOf(*au2, 831, 549); // the AU2 start marker
        const QPoint cone = viewOf(*au2, 300, 300);
        QImage img = grab();
        QCOMPARE(QColor(img.pixel(ground)), FixtureGround);
        QVERIFY(paintedAround(img, marker));

        addTo(*au2, 31, 300, 300);
        img = grab();
        const QColor plain(img.pixel(cone));
        QVERIFY(plain != FixtureGround);
        au2->document().Select({au2->document().Objects().At(0).Key()}, LayoutDocument::SelectMode::Add);
        img = grab();
        const QColor lit(img.pixel(cone));
        QVERIFY(lit.lightness() > plain.lightness());

        // A start of its own hides the default marker.
        addTo(*au2, 0, 100, 100);
        img = grab();
        QVERIFY(!paintedAround(img, marker));
        QVERIFY(paintedAround(img, viewOf(*au2, 100, 100)));
    }
};

QTEST_MAIN(TestLayoutWindow)
#include "tst_layoutwindow.moc"
