#include "DocumentFixture.h"

#include "app/ErrorLog.h"
#include "app/Language.h"
#include "core/ObjectCollection.h"
#include "core/Runtime.h"

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {
int errorOf(const std::function<void()> &fn)
{
    try {
        fn();
    } catch (const rt::Error &e) {
        return e.number();
    }
    return 0;
}

// Everything restore has to bring back, as comparable text.
QStringList describe(const LayoutDocument &doc)
{
    QStringList out;
    for (int i = 0; i < doc.Objects().Count(); ++i) {
        const varnoObject &o = doc.Objects().At(i);
        out << u"%1 %2 id%3 %4,%5 a%6 w%7 r%8 s%9"_s.arg(doc.Objects().KeyAt(i), o.Key())
                   .arg(o.ID()).arg(o.X()).arg(o.Y()).arg(o.Angle()).arg(o.Width()).arg(o.RouteIndex())
                   .arg(o.Selected());
    }
    out << u"m%1 f%2%3%4%5%6 l%7 e%8 n%9"_s.arg(doc.MarshallCount())
               .arg(doc.HasStart()).arg(doc.HasCheckpoint1()).arg(doc.HasCheckpoint2())
               .arg(doc.HasCheckpoint3()).arg(doc.HasFinish())
               .arg(doc.Laps()).arg(doc.Edited()).arg(doc.Selection().size());
    return out;
}

QStringList routeIndices(const LayoutDocument &doc)
{
    QStringList out;
    for (const varnoObject &o : doc.Objects())
        if (o.ID() == Kind::RouteChecker)
            out << QString::number(o.RouteIndex());
    return out;
}
} // namespace

class TestLayoutDocument : public QObject {
    Q_OBJECT
    std::unique_ptr<DocumentFixture> m_fx;
    ScriptedDialogs *m_dialogs = nullptr;

private slots:
    void initTestCase()
    {
        m_fx = std::make_unique<DocumentFixture>(1000, 800);
        FillCatalogue();
        QCOMPARE(Lang(163), u"Object outside layout, cannot add"_s);
    }
    void init()
    {
        m_dialogs = new ScriptedDialogs;
        ClearLoggedErrors();
    }
    void cleanup()
    {
        delete m_dialogs;
        m_dialogs = nullptr;
    }
    void cleanupTestCase() { m_fx.reset(); }

    void collectionKeepsOrderAndKeys()
    {
        ObjectCollection c;
        QStringList keys{u"a"_s, u"b"_s, u"c"_s, u"d"_s};
        for (const QString &k : keys) {
            auto o = std::make_unique<nrmlObject>();
            o->restoreKey(k);
            c.Add(std::move(o), k);
        }
        QCOMPARE(errorOf([&] { c.Add(std::make_unique<nrmlObject>(), u"b"_s); }), 457);
        QCOMPARE(rt::Error(457).message(), u"457: This key is already associated with an element of this collection"_s);
        QCOMPARE(c.Count(), 4);
        c.Remove(u"b"_s);
        c.Remove(u"a"_s);
        QStringList order;
        for (const varnoObject &o : c)
            order << o.Key();
        QCOMPARE(order, (QStringList{u"c"_s, u"d"_s}));
        // The index must follow the entries that moved up.
        QCOMPARE(c.Item(u"d"_s).Key(), u"d"_s);
        QCOMPARE(c.IndexOf(u"d"_s), 1);
        QCOMPARE(errorOf([&] { c.Item(u"a"_s); }), 5);
        QCOMPARE(errorOf([&] { c.Remove(u"a"_s); }), 5);
        QCOMPARE(errorOf([&] { c.At(2); }), 9);
    }

    void bounds_data()
    {
        QTest::addColumn<int>("x");
        QTest::addColumn<int>("y");
        QTest::addColumn<bool>("admitted");
        QTest::newRow("1,1") << 1 << 1 << true;
        QTest::newRow("width,height") << 1000 << 800 << true;
        QTest::newRow("x 0") << 0 << 5 << false;
        QTest::newRow("y 0") << 5 << 0 << false;
        QTest::newRow("width + 1") << 1001 << 5 << false;
        QTest::newRow("height + 1") << 5 << 801 << false;
        QTest::newRow("negative") << -3 << -3 << false;
    }
    void bounds()
    {
        QFETCH(int, x);
        QFETCH(int, y);
        QFETCH(bool, admitted);
        auto doc = m_fx->document(u"AU1_b.lyt"_s);
        doc->setPointer(12, -7);
        QSignalSpy spy(doc.get(), &LayoutDocument::Message);
        // A marshall: it passes every later check, so only the bounds decide.
        addObject(*doc, 56, x, y);
        QCOMPARE(doc->Objects().Count(), admitted ? 1 : 0);
        QCOMPARE(doc->Edited(), admitted);
        QCOMPARE(spy.count(), admitted ? 0 : 1);
        if (!admitted) {
            QCOMPARE(spy[0][0].toBool(), true);
            QCOMPARE(spy[0][1].value<int16_t>(), int16_t(12));
            QCOMPARE(spy[0][2].value<int16_t>(), int16_t(-7));
            QCOMPARE(spy[0][3].toString(), Lang(163));
            QCOMPARE(doc->MarshallCount(), int16_t(0));
        }
    }

    void noBackgroundRefusesEverything()
    {
        LayoutDocument doc;
        doc.setFileName(m_fx->layoutPath(u"AU1_none.lyt"_s));
        QSignalSpy spy(&doc, &LayoutDocument::Message);
        addObject(doc, 14, 1, 1);
        QCOMPARE(doc.Objects().Count(), 0);
        QCOMPARE(spy[0][3].toString(), u"Object outside layout, cannot add"_s);
    }

    void limit_data()
    {
        QTest::addColumn<int>("counted");
        QTest::addColumn<int>("nextId");
        QTest::addColumn<bool>("admitted");
        QTest::newRow("511 then cone") << 511 << 14 << true;
        QTest::newRow("511 then marshall") << 511 << 56 << true;
        QTest::newRow("512 then cone") << 512 << 14 << false;
        QTest::newRow("512 then marshall") << 512 << 56 << false;
        QTest::newRow("512 then route checker") << 512 << 59 << false;
        QTest::newRow("512 then start") << 512 << 0 << false;
    }
    void limit()
    {
        QFETCH(int, counted);
        QFETCH(int, nextId);
        QFETCH(bool, admitted);
        auto doc = m_fx->document(u"AU1_limit.lyt"_s);
        for (int i = 0; i < 3; ++i)
            addObject(*doc, 55 + i, 10 + i, 10);
        for (int i = 0; i < counted; ++i)
            addObject(*doc, 14, 1 + i, 100);
        QCOMPARE(doc->ObjectCount(), int16_t(counted));
        QCOMPARE(doc->MarshallCount(), int16_t(3));
        const uint8_t laps = doc->Laps();
        QSignalSpy spy(doc.get(), &LayoutDocument::Message);
        addObject(*doc, nextId, 500, 500);
        QCOMPARE(doc->Objects().Count(), counted + 3 + (admitted ? 1 : 0));
        if (!admitted) {
            QCOMPARE(spy[0][3].toString(), Lang(160));
            // The limit comes first: a refused start does not touch Laps.
            QCOMPARE(doc->Laps(), laps);
        }
    }

    void kinds_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<int>("id");
        QTest::addColumn<int>("x");
        QTest::addColumn<int>("slot");  // refusal text, 0 when admitted
        QTest::addColumn<int>("error"); // run-time error to the caller
        QTest::newRow("AU cone") << u"AU2_k.lyt"_s << 14 << 5 << 0 << 0;
        QTest::newRow("AU ramp refused") << u"AU2_k.lyt"_s << 54 << 5 << 162 << 0;
        QTest::newRow("AU cone1 refused") << u"AU3_k.lyt"_s << 29 << 5 << 162 << 0;
        QTest::newRow("BL ramp") << u"BL3_k.lyt"_s << 54 << 5 << 0 << 0;
        QTest::newRow("BL tyres red refused") << u"bl3_k.lyt"_s << 33 << 5 << 162 << 0;
        QTest::newRow("BL post orange refused") << u"BL3_k.lyt"_s << 48 << 5 << 162 << 0;
        QTest::newRow("unknown kind refused on AU") << u"AU1_k.lyt"_s << 60 << 5 << 162 << 0;
        QTest::newRow("unknown kind refused on BL") << u"BL3_k.lyt"_s << 60 << 5 << 162 << 0;
        QTest::newRow("id 61 is an error") << u"AU1_k.lyt"_s << 61 << 5 << 0 << 9;
        QTest::newRow("id 255 is an error") << u"BL3_k.lyt"_s << 255 << 5 << 0 << 9;
        QTest::newRow("bounds before id") << u"AU1_k.lyt"_s << 61 << 0 << 163 << 0;
    }
    void kinds()
    {
        QFETCH(QString, file);
        QFETCH(int, id);
        QFETCH(int, x);
        QFETCH(int, slot);
        QFETCH(int, error);
        auto doc = m_fx->document(file);
        QSignalSpy spy(doc.get(), &LayoutDocument::Message);
        QCOMPARE(errorOf([&] { addObject(*doc, id, x, 5); }), error);
        QCOMPARE(doc->Objects().Count(), slot == 0 && error == 0 ? 1 : 0);
        QCOMPARE(spy.count(), slot ? 1 : 0);
        if (slot)
            QCOMPARE(spy[0][3].toString(), Lang(slot));
        if (slot == 0 && error == 0)
            QCOMPARE(int(doc->Objects().At(0).ID()), id);
    }

    void uniqueObjects_data()
    {
        QTest::addColumn<int>("id");
        QTest::newRow("start") << 0;
        QTest::newRow("finish") << 1;
        QTest::newRow("checkpoint 1") << 2;
        QTest::newRow("checkpoint 2") << 3;
        QTest::newRow("checkpoint 3") << 4;
    }
    void uniqueObjects()
    {
        QFETCH(int, id);
        auto doc = m_fx->document(u"AU1_u.lyt"_s);
        auto flag = [&] {
            const bool f[] = {doc->HasStart(), doc->HasFinish(), doc->HasCheckpoint1(), doc->HasCheckpoint2(),
                              doc->HasCheckpoint3()};
            return f[id];
        };
        addObject(*doc, id, 100, 100);
        QVERIFY(flag());
        doc->setLaps(7);
        QSignalSpy spy(doc.get(), &LayoutDocument::Message);
        addObject(*doc, id, 200, 200);
        QCOMPARE(doc->Objects().Count(), 1);
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy[0][3].toString(), Lang(161));
        QVERIFY(flag());
        // Only a start touches Laps, and it does so even when refused.
        QCOMPARE(int(doc->Laps()), id == 0 ? 1 : 7);
        doc->ObjectRemove(doc->Objects().At(0).Key());
        QVERIFY(!flag());
        addObject(*doc, id, 300, 300);
        QCOMPARE(doc->Objects().Count(), 1);
        QCOMPARE(doc->Objects().At(0).X(), int16_t(300));
    }

    void widthDefault_data()
    {
        QTest::addColumn<int>("id");
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("written"); // what the caller's variable holds afterwards
        QTest::addColumn<int>("stored");
        QTest::newRow("finish 0") << 1 << 0 << 10 << 10;
        QTest::newRow("checkpoint 4") << 2 << 4 << 4 << 4;
        QTest::newRow("restricted 0") << 55 << 0 << 10 << 10;
        QTest::newRow("route checker 0") << 59 << 0 << 10 << 10;
        QTest::newRow("cone keeps 0") << 14 << 0 << 0 << 0;
        QTest::newRow("cone ignores width") << 14 << 6 << 6 << 0;
        QTest::newRow("start 0") << 0 << 0 << 0 << 0;
    }
    void widthDefault()
    {
        QFETCH(int, id);
        QFETCH(int, width);
        QFETCH(int, written);
        QFETCH(int, stored);
        auto doc = m_fx->document(u"AU1_w.lyt"_s);
        int16_t angle = 30;
        uint8_t w = uint8_t(width);
        bool fromView = false;
        bool selected = false;
        doc->ObjectAdd(uint8_t(id), 50, 60, angle, w, fromView, selected);
        QCOMPARE(int(w), written);
        QCOMPARE(int(doc->Objects().At(0).Width()), stored);
        QCOMPARE(angle, int16_t(30));
    }

    void routeCheckersAndCounts()
    {
        auto doc = m_fx->document(u"AU1_r.lyt"_s);
        addObject(*doc, 14, 5, 5);
        for (int i = 0; i < 3; ++i)
            addObject(*doc, 59, 10 + i, 10);
        addObject(*doc, 57, 20, 20);
        QCOMPARE(routeIndices(*doc), (QStringList{u"0"_s, u"1"_s, u"2"_s}));
        QCOMPARE(doc->MarshallCount(), int16_t(4));
        QCOMPARE(doc->ObjectCount(), int16_t(1));
        doc->ObjectRemove(doc->Objects().At(2).Key()); // route index 1
        QCOMPARE(routeIndices(*doc), (QStringList{u"0"_s, u"1"_s}));
        QCOMPARE(doc->MarshallCount(), int16_t(3));
        addObject(*doc, 59, 30, 30);
        QCOMPARE(routeIndices(*doc), (QStringList{u"0"_s, u"1"_s, u"2"_s}));
        doc->ObjectRemove(doc->Objects().At(3).Key()); // the restricted area
        QCOMPARE(doc->MarshallCount(), int16_t(3));
        QCOMPARE(routeIndices(*doc), (QStringList{u"0"_s, u"1"_s, u"2"_s}));
        QCOMPARE(doc->ObjectCount(), int16_t(1));
    }

    void fromView()
    {
        auto doc = m_fx->document(u"AU1_v.lyt"_s);
        doc->setViewToLayout([](int32_t &x, int32_t &y) {
            x = x / 2 + 1;
            y = y / 2 + 1;
        });
        int16_t angle = 0;
        uint8_t width = 0;
        bool fromView = true;
        bool selected = true;
        // 1999 view pixels is 1000 in the layout: inside, though the raw value is not.
        doc->ObjectAdd(14, 1998, 1598, angle, width, fromView, selected);
        QCOMPARE(doc->Objects().Count(), 1);
        QCOMPARE(doc->Objects().At(0).X(), int16_t(1000));
        QCOMPARE(doc->Objects().At(0).Y(), int16_t(800));
        QVERIFY(doc->Objects().At(0).Selected());
        QSignalSpy spy(doc.get(), &LayoutDocument::Message);
        doc->ObjectAdd(14, 2000, 10, angle, width, fromView, selected);
        QCOMPARE(spy.count(), 1);
    }

    void selection()
    {
        auto doc = m_fx->document(u"AU1_s.lyt"_s);
        addObject(*doc, 14, 120, 300, 0, 0, true);
        addObject(*doc, 14, 50, 50, 0, 0, false);
        addObject(*doc, 56, 200, 100, 0, 0, true);
        addObject(*doc, 14, 100, 250, 0, 0, true);
        QSignalSpy updated(doc.get(), &LayoutDocument::Updated);
        doc->SelectionUpdate(true);
        QCOMPARE(updated.count(), 1);
        const SelectionBox b = doc->SelectionBounds();
        QCOMPARE((QList<int>{b.left, b.top, b.right, b.bottom}), (QList<int>{100, 100, 200, 300}));
        const QList<selObject> &s = doc->Selection();
        QCOMPARE(s.size(), 3);
        QCOMPARE(s[0].strKey, doc->Objects().At(0).Key());
        QCOMPARE((QList<int>{s[0].X, s[0].Y, s[1].X, s[1].Y, s[2].X, s[2].Y}),
                 (QList<int>{20, 200, 100, 0, 0, 150}));
        for (const varnoObject &o : doc->Objects())
            const_cast<varnoObject &>(o).setSelected(false);
        doc->SelectionUpdate(false);
        QVERIFY(doc->Selection().isEmpty());
        QCOMPARE(updated.count(), 1);
    }

    void raiseUpdatesCarriesFlags()
    {
        auto doc = m_fx->document(u"AU1_f.lyt"_s);
        addObject(*doc, 0, 5, 5);
        addObject(*doc, 3, 6, 6);
        QSignalSpy spy(doc.get(), &LayoutDocument::ObjectUpdated);
        doc->RaiseUpdates();
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy[0], (QList<QVariant>{true, false, true, false, false}));
    }

    void snapshotRestore()
    {
        auto doc = m_fx->document(u"AU1_undo.lyt"_s);
        QRandomGenerator rng(4711);
        const int ids[] = {0, 1, 2, 3, 4, 14, 31, 49, 55, 56, 57, 58, 59, 59, 59};
        QList<DocumentState> states;
        QList<QStringList> seen;
        for (int step = 0; step < 60; ++step) {
            states << doc->snapshot();
            seen << describe(*doc);
            if (doc->Objects().Count() > 0 && rng.bounded(3) == 0) {
                doc->ObjectRemove(doc->Objects().At(int(rng.bounded(doc->Objects().Count()))).Key());
                doc->SelectionUpdate();
            } else {
                addObject(*doc, ids[rng.bounded(int(std::size(ids)))], 1 + int(rng.bounded(1000)),
                          1 + int(rng.bounded(800)), int(rng.bounded(361)) - 180, int(rng.bounded(20)),
                          rng.bounded(2) == 1);
                doc->SelectionUpdate();
            }
            if (step % 7 == 0)
                doc->setEdited(false);
        }
        // Back through every state, then forward again from the same snapshots.
        for (int i = int(states.size()) - 1; i >= 0; --i) {
            doc->restore(states[i]);
            QCOMPARE(describe(*doc), seen[i]);
        }
        for (int i = 0; i < states.size(); i += 5) {
            doc->restore(states[i]);
            QCOMPARE(describe(*doc), seen[i]);
        }
        // A restored document keeps working: keys stay unique and removal renumbers.
        doc->restore(states.last());
        for (const QString &k : [&] {
                 QStringList keys;
                 for (const varnoObject &o : doc->Objects())
                     keys << o.Key();
                 return keys;
             }())
            doc->ObjectRemove(k);
        QCOMPARE(doc->Objects().Count(), 0);
        QCOMPARE(doc->MarshallCount(), int16_t(0));
        QVERIFY(!doc->HasStart() && !doc->HasFinish());
    }

    void loadBackground_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<int>("markerX");
        QTest::addColumn<int>("markerY");
        QTest::addColumn<int>("markerAngle");
        QTest::addColumn<double>("span");
        QTest::newRow("AU1") << u"AU1_x.lyt"_s << 1507 << 1267 << -180 << 1630.0;
        QTest::newRow("au2 lower case") << u"au2_x.lyt"_s << 831 << 549 << 69 << 1050.0;
        QTest::newRow("AU3") << u"AU3_x.lyt"_s << 108 << 5442 << 0 << 580.0;
        QTest::newRow("AU4") << u"AU4_x.lyt"_s << 184 << 5442 << 0 << 580.0;
        QTest::newRow("BL3") << u"BL3_x.lyt"_s << 176 << 1417 << 0 << 1220.0;
    }
    void loadBackground()
    {
        QFETCH(QString, file);
        QFETCH(int, markerX);
        QFETCH(int, markerY);
        QFETCH(int, markerAngle);
        QFETCH(double, span);
        auto doc = m_fx->document(file);
        QCOMPARE(doc->BoundsWidth(), 1000);
        QCOMPARE(doc->BoundsHeight(), 800);
        QCOMPARE(doc->BGName(), options().AU1);
        QCOMPARE(doc->BackgroundScale(), float(1000.0 / span));
        const varnoObject *m = doc->StartMarker();
        QVERIFY(m);
        QCOMPARE((QList<int>{m->ID(), m->X(), m->Y(), m->Angle(), m->Width()}),
                 (QList<int>{0, markerX, markerY, markerAngle, 0}));
        QVERIFY(m_dialogs->messages.isEmpty());
    }

    void backgroundFallbacks()
    {
        const QString saved = options().AU34;
        // An option naming no file falls back to the program's own picture; here that
        // is missing too, so the user hears about it and the layout has no bounds.
        options().AU34 = m_fx->app->file(u"nowhere.png"_s);
        auto doc = m_fx->document(u"AU4_x.lyt"_s);
        const QString expected = AppPath() + u"backgrounds"_s + QDir::separator() + u"AU34.png"_s;
        QCOMPARE(doc->BGName(), expected);
        QCOMPARE(doc->BoundsWidth(), 0);
        QCOMPARE(m_dialogs->messages.size(), 1);
        QCOMPARE(m_dialogs->messages[0].text, expected + u"\r\n\r\nNot found!?"_s);
        QCOMPARE(m_dialogs->messages[0].icon, MsgIcon::Information);
        QCOMPARE(doc->StartMarker()->X(), int16_t(184));

        // The same default picture present: it is used.
        QDir().mkpath(QFileInfo(expected).absolutePath());
        QVERIFY(QImage(300, 200, QImage::Format_RGB32).save(expected));
        auto doc2 = m_fx->document(u"AU4_y.lyt"_s);
        QCOMPARE(doc2->BoundsWidth(), 300);
        QCOMPARE(doc2->BackgroundScale(), float(300.0 / 580));
        options().AU34 = saved;

        // A file that is no picture is an error of the loader, not a crash.
        const QString broken = WriteFile(m_fx->app->file(u"broken.png"_s), "not a picture");
        options().AU34 = broken;
        auto doc3 = m_fx->document(u"AU3_z.lyt"_s);
        QCOMPARE(doc3->BoundsWidth(), 0);
        QCOMPARE(LoggedErrors().value(0), u"481: Invalid picture in frmLayout.LayoutLoadBG"_s);
        options().AU34 = saved;
    }

    void unknownType()
    {
        auto doc = m_fx->document(u"XY9_x.lyt"_s);
        QCOMPARE(doc->LayoutType(), u"XY9"_s);
        QCOMPARE(doc->BoundsWidth(), 0);
        QCOMPARE(m_dialogs->messages.size(), 1);
        QCOMPARE(m_dialogs->messages[0].text, u"XY9\r\n"_s + Lang(164));
        QVERIFY(!doc->LayoutLoadBG());
    }
};

QTEST_MAIN(TestLayoutDocument)
#include "tst_layoutdocument.moc"
