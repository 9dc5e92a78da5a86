// The main window as a user meets it: pop-ups, status texts, change mode, closing with
// unsaved work, and one whole session driven by synthesized mouse and key events.

#include "app/ui/Editbar.h"
#include "app/ui/RotateButton.h"
#include "app/ui/frmMDI.h"
#include "base/Language.h"
#include "base/Settings.h"
#include "catalogue/ObjectKinds.h"
#include "catalogue/PaletteRows.h"
#include "catalogue/ui/Objectbar.h"
#include "support/DocumentFixture.h"
#include "view/ui/frmLayout.h"

#include <QtTest>
#include <QtWidgets>

static void send(QWidget *w, QEvent::Type type, const QPoint &pos, Qt::MouseButton button, Qt::MouseButtons buttons)
{
    QMouseEvent e(type, QPointF(pos), w->mapToGlobal(QPointF(pos)), button, buttons, Qt::NoModifier);
    QApplication::sendEvent(w, &e);
}

class TestMdi : public QObject {
    Q_OBJECT
    std::optional<TempAppFolder> m_app;
    std::optional<ScriptedDialogs> m_dialogs;
    Options m_previous;

    // Drags kind from the palette onto the document canvas at canvas point `at`.
    void dragFromPalette(frmMDI &mdi, int kind, const QPoint &at)
    {
        Objectbar *bar = mdi.palette();
        const int panel = ObjectKindAt(kind).Category;
        bar->ClickPanel(int16_t(panel));
        const int row = int(PanelKinds(panel).indexOf(int16_t(kind)));
        QVERIFY(row >= 0);
        QWidget *canvas = bar->canvas();
        const QPoint cell(Palette::CellLeft + 24, PaletteRowTop(row, bar->ScrollPosition(panel)) + 24);
        send(canvas, QEvent::MouseMove, cell, Qt::NoButton, Qt::NoButton);
        QCOMPARE(int(bar->HotItem()), kind);
        send(canvas, QEvent::MouseButtonPress, cell, Qt::LeftButton, Qt::LeftButton);
        const QPoint onTarget = canvas->mapFromGlobal(mdi.CurrentLayout()->canvas()->mapToGlobal(at));
        send(canvas, QEvent::MouseMove, (cell + onTarget) / 2, Qt::NoButton, Qt::LeftButton);
        send(canvas, QEvent::MouseMove, onTarget, Qt::NoButton, Qt::LeftButton);
        send(canvas, QEvent::MouseButtonRelease, onTarget, Qt::LeftButton, Qt::NoButton);
    }

    // Shows the window with a new AU1 layout open, and returns the layout.
    static frmLayout *shownWithLayout(frmMDI &mdi)
    {
        mdi.show();
        if (!QTest::qWaitForWindowActive(&mdi))
            return nullptr;
        mdi.NewLayout(0);
        return mdi.CurrentLayout();
    }

private slots:
    void init()
    {
        m_previous = options();
        m_app.emplace(true);
        m_dialogs.emplace();
        options() = Options::defaults();
        options().Language = m_app->file(QStringLiteral("lang/English.lng"));
        options().SaveFolder = m_app->file(QStringLiteral("layouts"));
        LoadLanguage();
    }
    void cleanup()
    {
        m_dialogs.reset();
        m_app.reset();
        options() = m_previous;
    }

    // The new-layout menu keeps the site codes in any language; the menu bar and the
    // status panels.
    void menusAndStatus()
    {
        WriteFile(m_app->file(QStringLiteral("lang/Other.lng")),
                  "025 Rennstrecke\r\n029 Parkplatz\r\n030 Neu\r\n");
        options().Language = m_app->file(QStringLiteral("lang/Other.lng"));
        LoadLanguage();
        frmMDI mdi;
        const QList<QAction *> items = mdi.newMenu()->actions();
        QCOMPARE(items[0]->text(), QStringLiteral("AU1 - Rennstrecke"));
        QCOMPARE(items[4]->text(), QStringLiteral("BL3 - Parkplatz"));
        QCOMPARE(mdi.toolAction(1)->text(), QStringLiteral("Neu"));
        // The menu bar holds the toolbar's commands, with their captions and keys.
        QString menus;
        for (QAction *top : mdi.menuBar()->actions()) {
            menus += top->text() + ':';
            for (QAction *a : top->menu()->actions())
                if (!a->isSeparator())
                    menus += QStringLiteral(" %1%2=%3,")
                                 .arg(a->text(), a->menu() ? ">" : "", a->shortcut().toString());
        }
        QCOMPARE(menus, "&File: Neu>=, Open=Ctrl+O, Open recent>=, Save to=Ctrl+S, Save As to=Ctrl+Shift+S, "
                        "Save to image=, Close=, Quit=Ctrl+Q,&Edit: Undo=Alt+Backspace, Redo=Ctrl+Y, "
                        "Select all=Ctrl+A, Copy=Ctrl+C, Paste at the pointer=Ctrl+V, Duplicate=Ctrl+D, "
                        "Delete=Del,&View: Zoom +=+, Zoom -=-, Fit &Width=Ctrl+W, Fit &Height=Ctrl+H, "
                        "To Selection..=, Object Zoom +=, Object Zoom -=,&Tools: Select=, Zoom tool=Ctrl+Z, "
                        "Measure distance=Ctrl+M, Object line=Ctrl+L, Options=,&Help: Help/About=,");
        // A new layout's file name comes from the fixed code and entry 104.
        mdi.show();
        QVERIFY(QTest::qWaitForWindowActive(&mdi));
        mdi.NewLayout(4);
        mdi.NewLayout(5); // no such item
        QCOMPARE(mdi.LayoutCount(), 1);
        frmLayout *l = mdi.CurrentLayout();
        QCOMPARE(l->LayoutName(), QStringLiteral("BL3_untitled.lyt"));

        // The status panels. "###%": halves round away from zero.
        l->setZoom(0.125f);
        QCOMPARE(mdi.panelText(4), QStringLiteral(" Zoom: 13%"));
        // Object zoom halves and doubles within limits it can always come back from.
        for (int i = 0; i < 3; ++i)
            mdi.ToolbarClick(10);
        QCOMPARE(mdi.panelText(5), QStringLiteral(" Object Zoom: 25%"));
        QVERIFY(!mdi.toolAction(10)->isEnabled());
        for (int i = 0; i < 7; ++i)
            mdi.ToolbarClick(9);
        QCOMPARE(mdi.panelText(5), QStringLiteral(" Object Zoom: 1600%"));
        QVERIFY(!mdi.toolAction(9)->isEnabled() && mdi.toolAction(10)->isEnabled());
        l->setLaps(3);
        QCOMPARE(mdi.panelText(2), QStringLiteral(" Laps: 3"));
        QCOMPARE(mdi.lapsBox()->value(), 3);
        mdi.lapsBox()->setValue(5);
        QCOMPARE(l->Laps(), uint8_t(5));
    }

    // Tool buttons, Escape, the menu's shortcuts and the edit bar's boxes, on a layout
    // with two objects (two undo steps), the first selected. "T12" triggers a toolbar
    // button, "palette" moves the keyboard there, "Angle" types 45 into the edit bar's
    // angle box; the rest are keys.
    void toolsAndKeys_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<int>("tool");
        QTest::addColumn<QString>("checked"); // select, zoom, measure, line
        QTest::addColumn<int>("objects");
        QTest::newRow("a second press releases a tool") << "T12 T13 T13" << 0 << "1000" << 2;
        QTest::newRow("Ctrl+Z checks the zoom tool") << "Ctrl+Z" << 6 << "0100" << 2;
        QTest::newRow("Escape: selection, tool, hint") << "Ctrl+M Escape Escape" << 0 << "1000" << 2;
        QTest::newRow("Ctrl+M acts once") << "Ctrl+M Ctrl+M" << 12 << "0010" << 2;
        QTest::newRow("undo in the layout acts once") << "Alt+Backspace" << 0 << "1000" << 1;
        QTest::newRow("the menu serves the palette") << "palette Alt+Backspace Ctrl+M" << 12 << "0010" << 1;
        QTest::newRow("Enter in a box: keys to the layout") << "Angle Enter Delete" << 0 << "1000" << 1;
        QTest::newRow("Escape in a box too") << "Angle Escape Delete" << 0 << "1000" << 1;
    }
    void toolsAndKeys()
    {
        QFETCH(QString, script);
        QFETCH(int, tool);
        QFETCH(QString, checked);
        QFETCH(int, objects);
        frmMDI mdi;
        frmLayout *l = shownWithLayout(mdi);
        QVERIFY(l);
        l->ObjectAdd(20, 800, 1300, 0, 0, false, true);
        l->ObjectAdd(20, 900, 1300);
        l->canvas()->setFocus();
        QSpinBox *angle = mdi.editbar()->udbAngle();
        for (const QString &step : script.split(' ')) {
            if (step.startsWith('T')) {
                mdi.toolAction(step.mid(1).toInt())->trigger();
            } else if (step == "palette") {
                mdi.palette()->canvas()->setFocus();
            } else if (step == "Angle") {
                angle->setFocus();
                QCOMPARE(QApplication::focusWidget(), angle);
                angle->selectAll();
                QTest::keyClicks(angle, QStringLiteral("45"));
            } else {
                const QKeySequence key(step);
                QTest::keyClick(QApplication::focusWidget(), key[0].key(), key[0].keyboardModifiers());
            }
        }
        QCOMPARE(l->Tool(), tool);
        QString got;
        for (const QAction *a : mdi.toolButtons())
            got += a->isChecked() ? '1' : '0';
        QCOMPARE(got, checked);
        QCOMPARE(mdi.panelText(1).isEmpty(), tool != ToolMeasure); // a hint only while measuring
        QCOMPARE(int(l->ObjectCount()), objects);
    }

    void changeMode()
    {
        frmMDI mdi;
        frmLayout *l = shownWithLayout(mdi);
        QVERIFY(l);
        l->ObjectAdd(20, 300, 300, 0, 0, false, true);
        emit mdi.editbar()->ChangeClicked();
        QVERIFY(mdi.ChangeMode());
        QCOMPARE(mdi.panelText(1), Lang(150));
        l->hint(QStringLiteral("something else")); // messages stay out while the mode is on
        QCOMPARE(mdi.panelText(1), Lang(150));
        emit mdi.palette()->ItemClicked(31);
        QCOMPARE(l->document().Objects().At(0).ID(), uint8_t(31));
        emit mdi.editbar()->ChangeClicked();
        QVERIFY(!mdi.ChangeMode());
        QCOMPARE(mdi.panelText(1), QString());
        emit mdi.palette()->ItemClicked(21); // outside change mode a click changes nothing
        QCOMPARE(l->document().Objects().At(0).ID(), uint8_t(31));
    }

    // A recent file that cannot be opened leaves the list, and the spare empty item opens
    // nothing. Cancel keeps every layout and writes nothing; closing for good writes the
    // options and the recent files.
    void recentFilesAndClose()
    {
        frmMDI mdi;
        QVERIFY(shownWithLayout(mdi));
        mdi.NewLayout(1);
        mdi.CurrentLayout()->ObjectAdd(20, 100, 100);
        mdi.RecentAdd(QStringLiteral("/x/AU1_old.lyt"));
        mdi.RecentAdd(WriteFile(m_app->file(QStringLiteral("layouts/AU1_broken.lyt")), "LFS"));
        mdi.OpenRecent(0);
        mdi.RecentAdd(QStringLiteral("/x/BL3_new.lyt"));
        mdi.OpenRecent(2);
        QCOMPARE(mdi.recentFiles().items(), (QStringList{"/x/BL3_new.lyt", "/x/AU1_old.lyt", QString()}));
        m_dialogs->answers << MsgResult::Cancel;
        QVERIFY(!mdi.close());
        QCOMPARE(mdi.LayoutCount(), 2);
        QCOMPARE(m_dialogs->messages.last().text, QStringLiteral("Save changes before closing?"));
        QVERIFY(!QFileInfo::exists(ConfigPath()));
        m_dialogs->answers << MsgResult::No;
        QVERIFY(mdi.close());
        QCOMPARE(mdi.LayoutCount(), 0);
        const QByteArray cfg = ReadAll(ConfigPath());
        QVERIFY2(cfg.contains("\r\nRecentFile1 /x/BL3_new.lyt\r\nRecentFile2 /x/AU1_old.lyt\r\n")
                     && !cfg.contains("RecentFile3"),
                 cfg.constData());
    }

    // New AU1 layout; a cone and a start dragged in from the palette; both selected
    // with a box; turned 90 degrees with the edit bar; saved, closed, reopened: the same
    // objects are there.
    void userStory()
    {
        frmMDI mdi;
        frmLayout *first = shownWithLayout(mdi);
        QVERIFY(first);
        first->setZoom(1.0f);
        first->centreOn(800, 1300);
        QTest::qWait(0);

        dragFromPalette(mdi, 20, QPoint(200, 200));
        dragFromPalette(mdi, Kind::Start, QPoint(300, 260));
        QCOMPARE(first->ObjectCount(), int16_t(2));
        // Start is placed, so the palette no longer offers it.
        QVERIFY(!ObjectKindAt(Kind::Start).Available);

        // A box around both selects them, and the edit bar shows the group.
        QWidget *canvas = first->canvas();
        send(canvas, QEvent::MouseButtonPress, QPoint(150, 150), Qt::LeftButton, Qt::LeftButton);
        send(canvas, QEvent::MouseMove, QPoint(250, 250), Qt::NoButton, Qt::LeftButton);
        send(canvas, QEvent::MouseMove, QPoint(350, 320), Qt::NoButton, Qt::LeftButton);
        send(canvas, QEvent::MouseButtonRelease, QPoint(350, 320), Qt::LeftButton, Qt::NoButton);
        QCOMPARE(first->document().Selection().size(), 2);
        QCOMPARE(mdi.editbar()->lblName()->text(), QStringLiteral("Group selection (2)"));

        // A right click on the clockwise button turns the group by +90.
        QTest::mouseClick(mdi.editbar()->cmdRotate(1), Qt::RightButton);
        for (const varnoObject &o : first->document().Objects())
            QCOMPARE(o.Angle(), int16_t(90));
        const QString turned = objectsText(first->document());

        // Save As (an untitled layout always asks for a name), close and open again.
        const QString file = m_app->file(QStringLiteral("layouts/AU1_story.lyt"));
        m_dialogs->saveAnswers << file;
        mdi.SaveCommand(0);
        QVERIFY(QFileInfo::exists(file) && !first->Edited());
        QVERIFY(mdi.CloseLayout(first));
        QVERIFY(mdi.LayoutAdd(file));
        QCOMPARE(objectsText(mdi.CurrentLayout()->document()), turned);
        QCOMPARE(mdi.recentFiles().items().first(), file);
    }
};

QTEST_MAIN(TestMdi)
#include "tst_mdi.moc"
