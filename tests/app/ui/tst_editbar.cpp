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
          angle(&bar, &Editbar::AngleChanged), width(&bar, &Editbar::WidthChanged), done(&bar, &Editbar::EditDone)
    {
    }
    qsizetype total() const { return change.size() + pack.size() + flip.size() + angle.size() + width.size(); }
    QSignalSpy change, pack, flip, angle, width, done;
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
    // enabled: change, pack, angle, rotate, flip, width; the labels and the other turn
    // and flip buttons follow their box or first button.
    void states_data()
    {
        QTest::addColumn<Placed>("objects");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QList<bool>>("enabled");
        QTest::addColumn<int>("angle");
        QTest::addColumn<int>("width");
        const QList<bool> off{false, false, false, false, false, false};
        QTest::newRow("nothing selected") << Placed{{14, 30, 0, 0}} << "No object selected" << off << 77 << 9;
        QTest::newRow("one cone, no width") << Placed{{14, 45, 0, 1}, {15, 10, 0, 0}} << "cone red"
                                            << QList<bool>{true, false, true, true, false, false} << 45 << 0;
        QTest::newRow("one finish line with a width") << Placed{{1, -90, 12, 1}} << "finish"
                                                      << QList<bool>{true, false, true, true, false, true} << -90 << 12;
        QTest::newRow("a pair") << Placed{{14, 45, 0, 1}, {1, 90, 12, 1}} << "Group selection (2)"
                                << QList<bool>{true, true, false, true, true, false} << 0 << 9;
        // No objects: the pair is shown, then the document goes; the bar offers nothing.
        QTest::newRow("no document after a pair") << Placed{} << "No object selected" << off << 0 << 9;
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
        filled(bar, objects.isEmpty() ? Placed{{14, 0, 0, 1}, {15, 0, 0, 1}} : objects);
        if (objects.isEmpty())
            bar.Fill();
        QCOMPARE(spies.total(), 0); // showing a selection is not an edit
        QCOMPARE(bar.lblName()->text(), name);
        const QList<QWidget *> shown{bar.cmdChange(),   bar.cmdPack(),   bar.udbAngle(),   bar.cmdRotate(0),
                                     bar.cmdFlip(0),    bar.udbWidth(),  bar.lblAngle(),   bar.cmdRotate(1),
                                     bar.cmdRotate(2),  bar.cmdFlip(1),  bar.lblWidth()};
        const QList<int> follows{0, 1, 2, 3, 4, 5, 2, 3, 3, 4, 5};
        for (int i = 0; i < shown.size(); ++i)
            QVERIFY2(shown[i]->isEnabled() == enabled[follows[i]], qPrintable(QString::number(i)));
        QCOMPARE(int(bar.Angle()), angle);
        QCOMPARE(bar.udbWidth()->value(), width);
    }

    void rotateSteps_data()
    {
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("index");
        QTest::addColumn<Qt::MouseButton>("button");
        QTest::addColumn<int>("result");
        QTest::newRow("-170 - 15") << -170 << 0 << Qt::LeftButton << 175;
        QTest::newRow("150 + 90") << 150 << 1 << Qt::RightButton << -120;
        QTest::newRow("0 + 180 stays 180") << 0 << 2 << Qt::LeftButton << 180;
        QTest::newRow("180 + 180 right") << 180 << 2 << Qt::RightButton << 0;
        QTest::newRow("middle resets 180") << -45 << 2 << Qt::MiddleButton << 0;
        QTest::newRow("middle at 0 still reports") << 0 << 1 << Qt::MiddleButton << 0;
    }
    void rotateSteps()
    {
        QFETCH(int, start);
        QFETCH(int, index);
        QFETCH(Qt::MouseButton, button);
        QFETCH(int, result);
        Editbar bar(&m_window);
        filled(bar, {{14, start, 0, 1}});
        Spies spies(bar);
        RotateButton *b = bar.cmdRotate(index);
        QTest::mouseClick(b, button);
        QCOMPARE(spies.total(), 1);
        QCOMPARE(spies.angle.first().first().value<int16_t>(), int16_t(result));
        QCOMPARE(int(bar.Angle()), result);
        // A release away from the button is no press.
        QTest::mousePress(b, button, {}, QPoint(5, 5));
        QTest::mouseRelease(b, button, {}, QPoint(b->width() + 20, 5));
        QCOMPARE(spies.total(), 1);
    }

    void buttonsAndBoxes()
    {
        Editbar bar(&m_window);
        filled(bar, {{14, 0, 0, 1}, {15, 0, 0, 1}});
        QVERIFY(QTest::qWaitForWindowExposed(&m_window));
        Spies spies(bar);
        QTest::mouseClick(bar.cmdFlip(1), Qt::LeftButton);
        QTest::mouseClick(bar.cmdChange(), Qt::LeftButton);
        QTest::mouseClick(bar.cmdPack(), Qt::LeftButton);
        QCOMPARE((QList<qsizetype>{spies.flip.size(), spies.change.size(), spies.pack.size()}),
                 (QList<qsizetype>{1, 1, 1}));
        QCOMPARE(spies.flip.first().first().value<int16_t>(), int16_t(1));

        filled(bar, {{2, 0, 8, 1}});
        // A typed width is reported once, when it is entered.
        QSpinBox *width = bar.udbWidth();
        width->setFocus();
        width->selectAll();
        QTest::keyClicks(width, u"25"_s);
        QCOMPARE(spies.width.size(), 0);
        QTest::keyClick(width, Qt::Key_Return);
        QCOMPARE(spies.width.size(), 1);
        QCOMPARE(spies.width.first().first().value<int16_t>(), int16_t(25));
        // Escape drops what was typed; both keys end the typing.
        width->selectAll();
        QTest::keyClicks(width, u"7"_s);
        QTest::keyClick(width, Qt::Key_Escape);
        QCOMPARE(width->text(), u"25"_s);
        QCOMPARE(spies.done.size(), 2);
        // The angle box's own steps are reported too.
        bar.udbAngle()->stepBy(-1);
        QCOMPARE(spies.angle.first().first().value<int16_t>(), int16_t(-1));
    }
};

QTEST_MAIN(TestEditbar)
#include "tst_editbar.moc"
