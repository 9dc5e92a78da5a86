// The mouse tools without a window: each gets a session and a view through its context.

#include "support/DocumentFixture.h"

#include "app/tools/LayoutTool.h"
#include "view/ViewGeometry.h"

#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

// A 660 x 520 view at zoom 1 on the fixture's AU1 layout, scrolled to the top left.
struct Context : ToolContext {
    std::unique_ptr<LayoutSession> layout;
    ViewGeometry geometry;
    QStringList hints;
    int16_t spacing = 20;

    explicit Context(const DocumentFixture &fx) : layout(fx.session(u"AU1_tools.lyt"_s))
    {
        geometry.setBackground(fx.width, fx.height, 1630);
        geometry.setClientSize(660, 520);
        geometry.setZoom(1.0f);
        geometry.setScroll(0, 0);
        geometry.setScroll(1, 0);
    }
    LayoutSession &session() override { return *layout; }
    ViewGeometry &view() override { return geometry; }
    void setZoom(float zoom) override { geometry.setZoom(zoom); }
    void centreOn(int32_t x, int32_t y) override { geometry.centreOn(x, y); }
    void viewChanged() override {}
    void redraw() override {}
    void hint(const QString &text) override { hints << text; }
    int16_t lineSpacing() const override { return spacing; }

    QPoint at(int x, int y) const
    {
        int32_t vx = x, vy = y;
        geometry.layoutToView(vx, vy);
        return {vx, vy};
    }
};

// Press at a, move in four steps to b, release there.
void drag(LayoutTool &tool, const QPoint &a, const QPoint &b, Qt::KeyboardModifiers mods = Qt::NoModifier)
{
    tool.press({a, Qt::LeftButton, Qt::LeftButton, mods});
    for (int i = 1; i <= 4; ++i)
        tool.move({a + (b - a) * i / 4, Qt::NoButton, Qt::LeftButton, mods});
    tool.release({b, Qt::LeftButton, Qt::NoButton, mods});
}

} // namespace

class TestTools : public DocumentTest {
    Q_OBJECT
private slots:
    void selectTool_data()
    {
        QTest::addColumn<QPoint>("from"); // layout units
        QTest::addColumn<QPoint>("to");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<QString>("selected");
        QTest::addColumn<int>("undoSteps");
        const int shift = Qt::ShiftModifier, ctrl = Qt::ControlModifier;
        QTest::newRow("click picks the object") << QPoint(300, 200) << QPoint(300, 200) << 0 << "20@300,200 a0 w0" << 0;
        QTest::newRow("shift-click adds") << QPoint(300, 200) << QPoint(300, 200) << shift
                                          << "20@200,200 a0 w0; 20@300,200 a0 w0" << 0;
        QTest::newRow("ctrl-click removes") << QPoint(200, 200) << QPoint(200, 200) << ctrl << "" << 0;
        QTest::newRow("click on the ground clears") << QPoint(500, 500) << QPoint(500, 500) << 0 << "" << 0;
        QTest::newRow("box selects") << QPoint(150, 150) << QPoint(350, 250) << 0
                                     << "20@200,200 a0 w0; 20@300,200 a0 w0" << 0;
        QTest::newRow("drag moves the selection as one step") << QPoint(200, 200) << QPoint(240, 230) << 0
                                                              << "20@240,230 a0 w0" << 1;
        QTest::newRow("a drag stops at the edge") << QPoint(200, 200) << QPoint(-50, 200) << 0 << "20@1,200 a0 w0" << 1;
    }
    // Cone A at 200,200 (selected) and cone B at 300,200, in a view scrolled by 50, as the
    // tools work in view pixels.
    void selectTool()
    {
        QFETCH(QPoint, from);
        QFETCH(QPoint, to);
        QFETCH(int, modifiers);
        QFETCH(QString, selected);
        QFETCH(int, undoSteps);
        Context c(m_fx);
        LayoutDocument &doc = c.session().document();
        addObject(doc, 20, 200, 200, 0, 0, true);
        addObject(doc, 20, 300, 200);
        doc.SelectionUpdate();
        c.geometry.setScroll(0, 50);
        SelectTool tool(c);
        drag(tool, c.at(from.x(), from.y()), c.at(to.x(), to.y()), Qt::KeyboardModifiers(modifiers));
        QCOMPARE(objectsText(doc, true), selected);
        QCOMPARE(c.session().undoStack().count(), undoSteps); // undoing it is tst_layoutwindow's
    }

    // The 1000-pixel test picture stands for the 1630 units of AU1: 57 pixels are 16.3 m.
    void measureTool()
    {
        Context c(m_fx);
        MeasureTool tool(c);
        drag(tool, c.at(100, 100), c.at(157, 100));
        QCOMPARE(c.hints.last(), u"Distance: 16.3m"_s);
        QCOMPARE(c.session().undoStack().count(), 0);
    }

    void zoomTool()
    {
        Context c(m_fx);
        c.geometry.setScroll(0, 100);
        c.geometry.setScroll(1, 100);
        ZoomTool tool(c);
        const QPoint at(200, 150);
        int32_t x = at.x(), y = at.y();
        c.geometry.viewToLayout(x, y);
        drag(tool, at, at);
        QCOMPARE(c.geometry.Zoom(), 2.0f);
        int32_t x2 = at.x(), y2 = at.y();
        c.geometry.viewToLayout(x2, y2);
        QCOMPARE(QPoint(x2, y2), QPoint(x, y)); // the point stays under the pointer
        // A box of 100 x 50 units fits the view.
        drag(tool, c.at(300, 300), c.at(400, 350));
        QCOMPARE(c.geometry.Zoom(), std::min(660 / 100.f, 520 / 50.f));
    }

    // With one object selected a drag lays a row of copies of it at the spacing.
    void lineTool()
    {
        Context c(m_fx);
        LayoutDocument &doc = c.session().document();
        addObject(doc, 20, 200, 200, 0, 0, true);
        addObject(doc, 20, 300, 200);
        doc.SelectionUpdate();
        LineTool tool(c);
        // Pressed on the source, the row starts at the source, which is its first member.
        // Ctrl keeps it straight down; a new spacing shows on the next move.
        tool.press({c.at(201, 201), Qt::LeftButton, Qt::LeftButton, Qt::ControlModifier});
        tool.move({c.at(203, 265), Qt::NoButton, Qt::LeftButton, Qt::ControlModifier});
        c.spacing = 21;
        tool.move({c.at(203, 265), Qt::NoButton, Qt::LeftButton, {}});
        tool.release({c.at(203, 265), Qt::LeftButton, Qt::NoButton, {}});
        // A row from elsewhere that reaches the source leaves its slot to it.
        drag(tool, c.at(200, 158), c.at(200, 200));
        QCOMPARE(objectsText(doc).section(u"; "_s, 2), u"20@201,221 a0 w0; 20@202,242 a0 w0; 20@203,263 a0 w0; "
                                                         u"20@200,158 a0 w0; 20@200,179 a0 w0"_s);
        QCOMPARE(c.session().undoStack().count(), 2);
    }
};

QTEST_MAIN(TestTools)
#include "tst_tools.moc"
