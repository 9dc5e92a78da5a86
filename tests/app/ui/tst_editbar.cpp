// The edit bar: what Fill shows for each selection, the turn steps per mouse button, and
// that showing a selection never reports a change.

#include "app/ui/Editbar.h"
#include "app/ui/RotateButton.h"
#include "support/DocumentFixture.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QToolButton>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

struct Placed {
    int id;
    int angle;
    int width;
    bool selected;
};

// Every signal the bar has, counted together.
struct Spies {
    explicit Spies(Editbar &bar)
        : change(&bar, &Editbar::ChangeClicked), pack(&bar, &Editbar::PackClicked), flip(&bar, &Editbar::FlipClicked),
          angle(&bar, &Editbar::AngleChanged), width(&bar, &Editbar::WidthChanged),
          done(&bar, &Editbar::EditDone)
    {
    }
    qsizetype total() const { return change.size() + pack.size() + flip.size() + angle.size() + width.size(); }
    QSignalSpy change, pack, flip, angle, width, done;
};

} // namespace
Q_DECLARE_METATYPE(QList<Placed>)

class TestEditbar : public QObject {
    Q_OBJECT
    std::optional<DocumentFixture> m_fx;
    std::optional<ScriptedDialogs> m_dialogs;

    std::unique_ptr<LayoutDocument> documentWith(const QList<Placed> &objects)
    {
        auto doc = m_fx->document(u"AU1_edit.lyt"_s);
        int x = 100;
        for (const Placed &p : objects) {
            addObject(*doc, p.id, x, 200, p.angle, p.width, p.selected);
            x += 40;
        }
        doc->SelectionUpdate();
        return doc;
    }

    // A shown bar (clicks need a visible button) filled from a document of objects.
    Editbar &shownBar(QWidget &window, const QList<Placed> &objects)
    {
        auto &bar = *new Editbar(&window);
        window.show();
        m_doc = documentWith(objects);
        bar.Fill(*m_doc);
        return bar;
    }
    std::unique_ptr<LayoutDocument> m_doc;

private slots:
    void initTestCase()
    {
        m_dialogs.emplace();
        m_fx.emplace();
    }
    void cleanupTestCase()
    {
        m_doc.reset();
        m_fx.reset();
        m_dialogs.reset();
    }

    void states_data()
    {
        QTest::addColumn<QList<Placed>>("objects");
        QTest::addColumn<QString>("name");
        // change, pack, angle, rotate, flip, width
        QTest::addColumn<QList<bool>>("enabled");
        QTest::addColumn<int>("angle");
        QTest::addColumn<int>("width");
        QTest::newRow("nothing selected") << QList<Placed>{{14, 30, 0, false}} << "No object selected"
                                          << QList<bool>{false, false, false, false, false, false} << 77 << 9;
        QTest::newRow("one cone, no width") << QList<Placed>{{14, 45, 0, true}, {15, 10, 0, false}} << "cone red"
                                            << QList<bool>{true, false, true, true, false, false} << 45 << 0;
        QTest::newRow("one finish line with a width") << QList<Placed>{{1, -90, 12, true}} << "finish"
                                                      << QList<bool>{true, false, true, true, false, true} << -90 << 12;
        QTest::newRow("a pair") << QList<Placed>{{14, 45, 0, true}, {1, 90, 12, true}} << "Group selection (2)"
                                << QList<bool>{true, true, false, true, true, false} << 0 << 9;
        // No objects: the pair is shown, then the document goes; the bar offers nothing.
        QTest::newRow("no document after a pair") << QList<Placed>{} << "No object selected"
                                                  << QList<bool>{false, false, false, false, false, false} << 0 << 9;
    }
    void states()
    {
        QFETCH(QList<Placed>, objects);
        QFETCH(QString, name);
        QFETCH(QList<bool>, enabled);
        QFETCH(int, angle);
        QFETCH(int, width);
        Editbar bar;
        {
            // Values left from an earlier selection.
            const QSignalBlocker a(bar.udbAngle());
            const QSignalBlocker w(bar.udbWidth());
            bar.udbAngle()->setValue(77);
            bar.udbWidth()->setValue(9);
        }
        const auto doc = documentWith(objects.isEmpty() ? QList<Placed>{{14, 0, 0, true}, {15, 0, 0, true}} : objects);
        Spies spies(bar);
        bar.Fill(*doc);
        if (objects.isEmpty())
            bar.Fill();
        QCOMPARE(spies.total(), 0); // showing a selection is not an edit
        QCOMPARE(bar.lblName()->text(), name);
        const QList<bool> got{bar.cmdChange()->isEnabled(), bar.cmdPack()->isEnabled(), bar.udbAngle()->isEnabled(),
                              bar.cmdRotate(0)->isEnabled(), bar.cmdFlip(0)->isEnabled(), bar.udbWidth()->isEnabled()};
        QCOMPARE(got, enabled);
        QCOMPARE(bar.lblAngle()->isEnabled(), enabled[2]);
        QCOMPARE(bar.lblWidth()->isEnabled(), enabled[5]);
        for (int i = 1; i < 3; ++i)
            QCOMPARE(bar.cmdRotate(i)->isEnabled(), enabled[3]);
        QCOMPARE(bar.cmdFlip(1)->isEnabled(), enabled[4]);
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
        QWidget window;
        Editbar &bar = shownBar(window, {{14, start, 0, true}});
        Spies spies(bar);
        QTest::mouseClick(bar.cmdRotate(index), button);
        QCOMPARE(spies.total(), 1);
        QCOMPARE(spies.angle.first().first().value<int16_t>(), int16_t(result));
        QCOMPARE(int(bar.Angle()), result);
        // A release away from the button is no press.
        RotateButton *b = bar.cmdRotate(index);
        QTest::mousePress(b, button, {}, QPoint(5, 5));
        QTest::mouseRelease(b, button, {}, QPoint(b->width() + 20, 5));
        QCOMPARE(spies.total(), 1);
    }

    void buttonsAndBoxes()
    {
        QWidget window;
        Editbar &bar = shownBar(window, {{14, 0, 0, true}, {15, 0, 0, true}});
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        Spies spies(bar);
        QTest::mouseClick(bar.cmdFlip(1), Qt::LeftButton);
        QTest::mouseClick(bar.cmdChange(), Qt::LeftButton);
        QTest::mouseClick(bar.cmdPack(), Qt::LeftButton);
        QCOMPARE(spies.flip.size(), 1);
        QCOMPARE(spies.flip.first().first().value<int16_t>(), int16_t(1));
        QCOMPARE(spies.change.size(), 1);
        QCOMPARE(spies.pack.size(), 1);

        const auto line = documentWith({{2, 0, 8, true}});
        bar.Fill(*line);
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
