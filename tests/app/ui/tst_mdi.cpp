// The main window as a user meets it: new layouts, status texts, tools and keys,
// closing with unsaved work, and drops from the palette.

#include "app/ui/Editbar.h"
#include "app/ui/frmMDI.h"
#include "base/Language.h"
#include "base/Settings.h"
#include "catalogue/ui/Objectbar.h"
#include "support/TestSupport.h"
#include "view/ui/frmLayout.h"

#include <QtTest>
#include <QtWidgets>

class TestMdi : public QObject {
    Q_OBJECT
    std::optional<TempAppFolder> m_app;
    std::optional<ScriptedDialogs> m_dialogs;
    Options m_previous;

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

    // A new layout's name and the status panels.
    void newLayoutAndStatus()
    {
        frmMDI mdi;
        // A new layout's file name comes from the fixed code and entry 104.
        mdi.show();
        QVERIFY(QTest::qWaitForWindowActive(&mdi));
        mdi.NewLayout(4);
        frmLayout *l = mdi.CurrentLayout();
        QCOMPARE(l->LayoutName(), QStringLiteral("BL3_untitled.lyt"));

        // The status panels. "###%": halves round away from zero.
        l->setZoom(0.125f);
        QCOMPARE(mdi.panelText(4), QStringLiteral(" Zoom: 13%"));
        // Object zoom doubles up to a limit it can always come back from.
        for (int i = 0; i < 4; ++i)
            mdi.ToolbarClick(9);
        QCOMPARE(mdi.panelText(5), QStringLiteral(" Object Zoom: 1600%"));
        QVERIFY(!mdi.toolAction(9)->isEnabled() && mdi.toolAction(10)->isEnabled());
    }

    // Tool buttons, Escape, the menu's shortcuts and the edit bar's boxes, on a layout
    // with two objects (two undo steps), the first selected. "palette" moves the keyboard
    // there, "Angle" types 45 into the edit bar's angle box; the rest are keys.
    void toolsAndKeys_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<int>("tool");
        QTest::addColumn<QString>("checked"); // select, zoom, measure, line
        QTest::addColumn<int>("objects");
        QTest::newRow("Escape: selection, tool, hint") << "Ctrl+M Escape Escape" << 0 << "1000" << 2;
        QTest::newRow("Ctrl+M acts once") << "Ctrl+M Ctrl+M" << 12 << "0010" << 2;
        QTest::newRow("undo in the layout acts once") << "Alt+Backspace" << 0 << "1000" << 1;
        QTest::newRow("the menu serves the palette") << "palette Alt+Backspace Ctrl+M" << 12 << "0010" << 1;
        QTest::newRow("Enter in a box: keys to the layout") << "Angle Enter Delete" << 0 << "1000" << 1;
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
            if (step == "palette") {
                mdi.palette()->canvas()->setFocus();
            } else if (step == "Angle") {
                angle->setFocus();
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

    // Cancel keeps every layout and writes nothing; closing for good writes the
    // options and the recent files.
    void recentFilesAndClose()
    {
        frmMDI mdi;
        QVERIFY(shownWithLayout(mdi));
        mdi.NewLayout(1);
        mdi.CurrentLayout()->ObjectAdd(20, 100, 100);
        mdi.RecentAdd(QStringLiteral("/x/AU1_old.lyt"));
        mdi.RecentAdd(QStringLiteral("/x/BL3_new.lyt"));
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

    // The palette reports a drop in its own pixels; it lands on the layout under them.
    void dropFromPalette()
    {
        frmMDI mdi;
        frmLayout *l = shownWithLayout(mdi);
        QVERIFY(l);
        const QPoint at = mdi.palette()->mapFromGlobal(l->canvas()->mapToGlobal(l->canvas()->rect().center()));
        emit mdi.palette()->ItemDropped(20, int16_t(at.x()), int16_t(at.y()));
        QCOMPARE(l->ObjectCount(), int16_t(1));
    }
};

QTEST_MAIN(TestMdi)
#include "tst_mdi.moc"
