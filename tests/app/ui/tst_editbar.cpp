// The edit bar: what Fill shows for each selection, the turn steps per mouse button, and
// that showing a selection never reports a change.

#include "app/ui/Editbar.h"
#include "app/ui/RotateButton.h"
#include "support/DocumentFixture.h"

#include <QtTest>
#include <QtWidgets>

using namespace Qt::StringLiterals;

// Every signal the bar has, counted together.
struct Spies {
    explicit Spies(Editbar &bar)
        : change(&bar, &Editbar::ChangeClicked), pack(&bar, &Editbar::PackClicked), flip(&bar, &Editbar::FlipClicked),
          angle(&bar, &Editbar::AngleChanged), width(&bar, &Editbar::WidthChanged)
    {
    }
    qsizetype total() const { return change.size() + pack.size() + flip.size() + angle.size() + width.size(); }
    QSignalSpy change, pack, flip, angle, width;
};

// Objects are {kind, angle, width, selected}, placed side by side.
using Placed = QList<QList<int>>;

class TestEditbar : public QObject {
    Q_OBJECT
    ScriptedDialogs m_dialogs;
    DocumentFixture m_fx;
    std::unique_ptr<LayoutDocument> m_doc; // goes before the fixture's folder
    QWidget m_window;                      // the bars' parent: clicks need a visible button

    // Fills a shown bar from a document of objects.
    Editbar &filled(Editbar &bar, const Placed &objects)
    {
        m_doc = m_fx.document(u"AU1_edit.lyt"_s);
        int x = 100;
        for (const QList<int> &p : objects)
            addObject(*m_doc, p[0], x += 40, 200, p[1], p[2], p[3]);
        m_doc->SelectionUpdate();
        m_window.show();
        bar.show();
        bar.Fill(*m_doc);
        return bar;
    }

private slots:
    // enabled: change, pack, angle, rotate, flip, width.
    void states_data()
    {
        QTest::addColumn<Placed>("objects");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QList<bool>>("enabled");
        QTest::addColumn<int>("angle");
        QTest::addColumn<int>("width");
        const QList<bool> off{false, false, false, false, false, false};
        QTest::newRow("nothing selected") << Placed{{14, 30, 0, 0}} << "No object selected" << off << 77 << 9;
        QTest::newRow("one finish line with a width") << Placed{{1, -90, 12, 1}} << "finish"
                                                      << QList<bool>{true, false, true, true, false, true} << -90 << 12;
        QTest::newRow("a pair") << Placed{{14, 45, 0, 1}, {1, 90, 12, 1}} << "Group selection (2)"
                                << QList<bool>{true, true, false, true, true, false} << 0 << 9;
    }
    void states()
    {
        QFETCH(Placed, objects);
        QFETCH(QString, name);
        QFETCH(QList<bool>, enabled);
        QFETCH(int, angle);
        QFETCH(int, width);
        Editbar bar(&m_window);
        {
            // Values left from an earlier selection.
            const QSignalBlocker a(bar.udbAngle()), w(bar.udbWidth());
            bar.udbAngle()->setValue(77);
            bar.udbWidth()->setValue(9);
        }
        Spies spies(bar);
        filled(bar, objects);
        QCOMPARE(spies.total(), 0); // showing a selection is not an edit
        QCOMPARE(bar.lblName()->text(), name);
        const QList<QWidget *> shown{bar.cmdChange(),  bar.cmdPack(),  bar.udbAngle(),
                                     bar.cmdRotate(0), bar.cmdFlip(0), bar.udbWidth()};
        for (int i = 0; i < shown.size(); ++i)
            QVERIFY2(shown[i]->isEnabled() == enabled[i], qPrintable(QString::number(i)));
        QCOMPARE(int(bar.Angle()), angle);
        QCOMPARE(bar.udbWidth()->value(), width);
    }

    // Each button's step per mouse button, wrapping at +-180; the middle button resets.
    void rotateButtons()
    {
        Editbar bar(&m_window);
        filled(bar, {{14, -170, 0, 1}});
        Spies spies(bar);
        QTest::mouseClick(bar.cmdRotate(0), Qt::LeftButton);
        QCOMPARE(int(bar.Angle()), 175);
        QTest::mouseClick(bar.cmdRotate(1), Qt::RightButton);
        QCOMPARE(int(bar.Angle()), -95);
        QTest::mouseClick(bar.cmdRotate(2), Qt::MiddleButton);
        QCOMPARE(int(bar.Angle()), 0);
        QCOMPARE(spies.total(), 3);
    }

    void widthBox()
    {
        Editbar bar(&m_window);
        filled(bar, {{2, 0, 8, 1}});
        QVERIFY(QTest::qWaitForWindowExposed(&m_window));
        Spies spies(bar);
        // A typed width is reported once, when it is entered.
        QSpinBox *width = bar.udbWidth();
        width->setFocus();
        width->selectAll();
        QTest::keyClicks(width, u"25"_s);
        QCOMPARE(spies.width.size(), 0);
        QTest::keyClick(width, Qt::Key_Return);
        QCOMPARE(spies.width.size(), 1);
        QCOMPARE(spies.width.first().first().value<int16_t>(), int16_t(25));
        // Escape drops what was typed.
        width->selectAll();
        QTest::keyClicks(width, u"7"_s);
        QTest::keyClick(width, Qt::Key_Escape);
        QCOMPARE(width->text(), u"25"_s);
    }
};

QTEST_MAIN(TestEditbar)
#include "tst_editbar.moc"
