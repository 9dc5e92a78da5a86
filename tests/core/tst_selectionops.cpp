// Flipping, rotating, re-typing, widths and moving of the selection.

#include "support/DocumentFixture.h"

#include <QSignalSpy>
#include <QtTest>

namespace {
void selectIndices(LayoutDocument &doc, std::initializer_list<int> indices)
{
    QStringList keys;
    for (int i : indices)
        keys << doc.Objects().At(i).Key();
    doc.Select(keys, LayoutDocument::SelectMode::Replace);
}
} // namespace

class TestSelectionOps : public DocumentTest {
    Q_OBJECT
    std::unique_ptr<LayoutDocument> m_doc;

    void prepare() override { m_doc = m_fx.document(QStringLiteral("AU1_ops.lyt")); }

private slots:
    // Bounds 100..200 across and 300..400 down; the mirror axis is their middle. The
    // bounds are the same after a flip, so a second one restores all.
    void flip()
    {
        addObject(*m_doc, 20, 120, 300, 30);
        addObject(*m_doc, 20, 200, 400, -10);
        addObject(*m_doc, 20, 100, 350, 90);
        selectIndices(*m_doc, {0, 1, 2});
        const QString before = objectsText(*m_doc);
        QStringList seen;
        for (bool vertical : {false, false, true, true})
            m_doc->SelectionFlip(vertical), seen << objectsText(*m_doc);
        QCOMPARE(seen, (QStringList{"20@180,300 a150 w0; 20@100,400 a-170 w0; 20@200,350 a90 w0", before,
                                    "20@120,400 a-30 w0; 20@200,300 a10 w0; 20@100,350 a-90 w0", before}));
    }

    void rotate_data()
    {
        QTest::addColumn<QList<int>>("angles"); // successive ObjectRotate calls
        QTest::addColumn<QString>("expected");
        QTest::newRow("90 turns about the middle") << QList<int>{90} << "20@150,150 a90 w0; 20@150,50 a90 w0";
        QTest::newRow("back to 0") << QList<int>{90, 0} << "20@100,100 a0 w0; 20@200,100 a0 w0";
        // Six 15-degree steps land on the same places as one quarter turn here, with
        // every intermediate position rounded.
        QTest::newRow("in 15 degree steps") << QList<int>{15, 30, 45, 60, 75, 90}
                                            << "20@150,150 a90 w0; 20@150,50 a90 w0";
        QTest::newRow("-45 rounds each position")
            << QList<int>{-45} << "20@115,65 a-45 w0; 20@185,135 a-45 w0";
    }
    void rotate()
    {
        QFETCH(QList<int>, angles);
        QFETCH(QString, expected);
        addObject(*m_doc, 20, 100, 100);
        addObject(*m_doc, 20, 200, 100);
        selectIndices(*m_doc, {0, 1});
        for (int a : angles)
            m_doc->ObjectRotate(a);
        QCOMPARE(objectsText(*m_doc), expected);
        QCOMPARE(m_doc->GroupAngle(), int16_t(angles.last()));
    }

    // A new selection starts from group angle 0, so +15 from the edit bar's reset box
    // turns the new group by exactly 15 degrees and not by what the last group had.
    void groupAngleResetsWithTheSelection()
    {
        for (const QPoint p : {QPoint(100, 100), QPoint(200, 100), QPoint(400, 400), QPoint(500, 400)})
            addObject(*m_doc, 20, p.x(), p.y());
        selectIndices(*m_doc, {0, 1});
        m_doc->ObjectRotate(90);
        m_doc->SelectionUpdate(false); // same objects: the reference stays
        QCOMPARE(m_doc->GroupAngle(), int16_t(90));
        selectIndices(*m_doc, {2, 3});
        QCOMPARE(m_doc->GroupAngle(), int16_t(0));
        m_doc->ObjectRotate(15);
        QCOMPARE(objectsText(*m_doc, true), QStringLiteral("20@402,413 a15 w0; 20@498,387 a15 w0"));
        // One object turns where it stands, whatever group angle is left over.
        selectIndices(*m_doc, {3});
        m_doc->setGroupAngle(40);
        m_doc->ObjectRotate(-135);
        QCOMPARE(objectsText(*m_doc, true), QStringLiteral("20@498,387 a-135 w0"));
        // An angle past 16 bits reaches the caller as an overflow.
        QCOMPARE(errorOf([&] { m_doc->ObjectRotate(40000); }), int(rt::Overflow));
    }

    void change_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<QString>("message");
        // Objects: cone at 100,100 (selected), start at 300,300, cone at 500,500 (selected).
        QTest::newRow("cone to tyre keeps place and angle, and goes to the end")
            << 31 << "0@300,300 a0 w0; 31@100,100 a45 w0; 31@500,500 a-90 w0" << "";
        QTest::newRow("a second start is refused and the rest still change")
            << 0 << "20@100,100 a45 w0; 0@300,300 a0 w0; 20@500,500 a-90 w0"
            << "Unique object already in layout, cannot add";
        QTest::newRow("finish gets a width") << 1 << "0@300,300 a0 w0; 20@500,500 a-90 w0; 1@100,100 a45 w10"
                                             << "Unique object already in layout, cannot add";
        QTest::newRow("a kind of the other site is refused")
            << 54 << "20@100,100 a45 w0; 0@300,300 a0 w0; 20@500,500 a-90 w0"
            << "Object not allowed in this layout type, cannot add";
    }
    void change()
    {
        QFETCH(int, kind);
        QFETCH(QString, expected);
        QFETCH(QString, message);
        QSignalSpy refused(m_doc.get(), &LayoutDocument::Refused);
        addObject(*m_doc, 20, 100, 100, 45, 0, true);
        addObject(*m_doc, 0, 300, 300);
        addObject(*m_doc, 20, 500, 500, -90, 0, true);
        m_doc->SelectionUpdate(false);
        m_doc->ObjectChange(uint8_t(kind));
        QCOMPARE(objectsText(*m_doc), expected);
        QCOMPARE(refused.isEmpty() ? QString() : Lang(refused.last()[0].value<LayoutDocument::Refusal>()), message);
        QCOMPARE(m_doc->Selection().size(), 2);
    }

    void widthOnlyForObjectsThatHaveOne()
    {
        addObject(*m_doc, 1, 100, 100, 0, 12, true);
        addObject(*m_doc, 20, 200, 200, 0, 0, true);
        addObject(*m_doc, 57, 300, 300, 0, 10, false);
        m_doc->SelectionUpdate(false);
        m_doc->ObjectWidth(30);
        m_doc->ObjectWidth(0); // ignored: a line never loses its width
        QCOMPARE(objectsText(*m_doc), QStringLiteral("1@100,100 a0 w30; 20@200,200 a0 w0; 57@300,300 a0 w10"));
    }

    void move_data()
    {
        QTest::addColumn<int>("dx");
        QTest::addColumn<int>("dy");
        QTest::addColumn<QPoint>("moved");
        // Selection spans 10..900 across and 20..700 down on a 1000 x 800 layout.
        QTest::newRow("stops at the right edge") << 500 << 0 << QPoint(100, 0);
        QTest::newRow("stops at the left and top edges") << -50 << -100 << QPoint(-9, -19);
        QTest::newRow("stops at the bottom, keeps the move across") << 3 << 1000 << QPoint(3, 100);
    }
    void move()
    {
        QFETCH(int, dx);
        QFETCH(int, dy);
        QFETCH(QPoint, moved);
        addObject(*m_doc, 20, 10, 20, 0, 0, true);
        addObject(*m_doc, 20, 900, 700, 0, 0, true);
        addObject(*m_doc, 20, 500, 500);
        m_doc->SelectionUpdate(false);
        QCOMPARE(m_doc->MoveSelection(dx, dy), moved);
        const ObjectCollection &o = m_doc->Objects();
        QCOMPARE((QList<int>{o.At(0).X(), o.At(0).Y(), o.At(1).X(), o.At(1).Y(), o.At(2).X(), o.At(2).Y()}),
                 (QList<int>{10 + moved.x(), 20 + moved.y(), 900 + moved.x(), 700 + moved.y(), 500, 500}));
    }
};

QTEST_GUILESS_MAIN(TestSelectionOps)
#include "tst_selectionops.moc"
