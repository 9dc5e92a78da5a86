#include "support/DocumentFixture.h"

#include "base/ErrorLog.h"

#include <QSignalSpy>
#include <QtTest>
#include <optional>

using namespace Qt::StringLiterals;

namespace {
QString routeIndices(const LayoutDocument &doc)
{
    QStringList out;
    for (const varnoObject &o : doc.Objects())
        if (o.ID() == Kind::RouteChecker)
            out << QString::number(o.RouteIndex());
    return out.join(u' ');
}
} // namespace

class TestLayoutDocument : public DocumentTest {
    Q_OBJECT

private slots:
    // One object added to a 1000 x 800 layout after others: admitted, refused with the
    // message of a language slot, or a run-time error (negative) for the caller.
    void objectAdd_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QList<int>>("before"); // kinds already placed
        QTest::addColumn<int>("cones");         // and this many counted objects
        QTest::addColumn<QList<int>>("object"); // id, x, y, width
        QTest::addColumn<int>("outcome");
        QTest::addColumn<int>("width"); // stored when admitted
        auto row = [](const char *name, const char *file, const QList<int> &before, int cones,
                      const QList<int> &object, int outcome, int width = 0) {
            QTest::newRow(name) << QString::fromLatin1(file) << before << cones << object << outcome << width;
        };
        // A marshall passes every check after the bounds.
        row("1,1", "AU1.lyt", {}, 0, {56, 1, 1, 0}, 0, 10);
        row("width,height", "AU1.lyt", {}, 0, {56, 1000, 800, 0}, 0, 10);
        row("x 0", "AU1.lyt", {}, 0, {56, 0, 5, 0}, 163);
        row("width + 1", "AU1.lyt", {}, 0, {56, 1001, 5, 0}, 163);
        row("no background, no bounds", "XY9.lyt", {}, 0, {14, 1, 1, 0}, 163);
        // Marshalls do not count towards the 512, but at 512 even they are refused.
        row("511 counted, a marshall", "AU1.lyt", {55, 56, 57}, 511, {58, 500, 500, 4}, 0, 4);
        row("512 counted, a cone", "AU1.lyt", {55, 56, 57}, 512, {14, 500, 500, 0}, 160);
        row("512 counted, a marshall", "AU1.lyt", {55, 56, 57}, 512, {56, 500, 500, 0}, 160);
        row("AU cone", "AU2.lyt", {}, 0, {14, 5, 5, 6}, 0);
        row("AU ramp refused", "AU2.lyt", {}, 0, {54, 5, 5, 0}, 162);
        row("BL red tyres refused", "bl3.lyt", {}, 0, {33, 5, 5, 0}, 162);
        row("kind 60 refused", "AU1.lyt", {}, 0, {60, 5, 5, 0}, 162);
        row("kind 61 is error 9", "AU1.lyt", {}, 0, {61, 5, 5, 0}, -9);
        row("bounds before the kind", "AU1.lyt", {}, 0, {61, 0, 5, 0}, 163);
        for (int id : {0, 1, 2, 3, 4})
            row(qPrintable(u"second of unique kind %1"_s.arg(id)), "AU1.lyt", {id}, 0, {id, 200, 200, 0}, 161);
        row("checkpoint 3 after the others", "AU1.lyt", {0, 1, 2, 3}, 0, {4, 200, 200, 4}, 0, 4);
        row("finish width 0 is 10", "AU1.lyt", {}, 0, {1, 50, 60, 0}, 0, 10);
    }
    void objectAdd()
    {
        QFETCH(QString, file);
        QFETCH(QList<int>, before);
        QFETCH(int, cones);
        QFETCH(QList<int>, object);
        QFETCH(int, outcome);
        QFETCH(int, width);
        auto doc = m_fx.document(file);
        for (int i = 0; i < before.size(); ++i)
            addObject(*doc, before[i], 10 + i, 10);
        for (int i = 0; i < cones; ++i)
            addObject(*doc, 14, 1 + i, 100);
        doc->setLaps(7);
        doc->setPointer(12, -7);
        const int count = doc->Objects().Count();
        QSignalSpy spy(doc.get(), &LayoutDocument::Refused);
        QCOMPARE(errorOf([&] { addObject(*doc, object[0], object[1], object[2], 30, object[3]); }),
                 outcome < 0 ? -outcome : 0);
        QCOMPARE(doc->Objects().Count(), count + (outcome == 0 ? 1 : 0));
        // A refusal says why and where the pointer was; an admitted object gets its width.
        QCOMPARE(spy.count(), outcome > 0 ? 1 : 0);
        if (outcome > 0)
            QCOMPARE((QList<int>{spy[0][0].value<LayoutDocument::Refusal>(), spy[0][1].toInt(), spy[0][2].toInt()}),
                     (QList<int>{outcome, 12, -7}));
        if (outcome == 0)
            QCOMPARE((QList<int>{doc->Objects().At(count).ID(), doc->Objects().At(count).Width()}),
                     (QList<int>{object[0], width}));
        // Only a start touches Laps: admitted, or refused as a second start.
        QCOMPARE(int(doc->Laps()), object[0] == 0 && (outcome == 0 || outcome == 161) ? 1 : 7);
    }

    void flagsCountsAndRouteNumbers()
    {
        auto doc = m_fx.document(u"AU1_r.lyt"_s);
        for (int id : {0, 1, 3, 14, 59, 59, 59, 57})
            addObject(*doc, id, 10 + id, 10);
        QSignalSpy spy(doc.get(), &LayoutDocument::ObjectUpdated);
        doc->RaiseUpdates();
        QCOMPARE(spy.value(0), (QList<QVariant>{true, false, true, false, true})); // start, checkpoints, finish
        QCOMPARE(routeIndices(*doc), u"0 1 2"_s);
        QCOMPARE(doc->MarshallCount(), int16_t(4));
        doc->ObjectRemove(doc->Objects().At(5).Key()); // route checker 1
        QCOMPARE(routeIndices(*doc), u"0 1"_s);
        addObject(*doc, 59, 30, 30);
        doc->ObjectRemove(doc->Objects().At(6).Key()); // the restricted area
        QCOMPARE(routeIndices(*doc), u"0 1 2"_s);
        QCOMPARE((QList<int>{doc->MarshallCount(), doc->ObjectCount()}), (QList<int>{3, 4}));
    }

    // 1998 view pixels are 1000 in the layout: inside, though the raw value is not.
    void fromView()
    {
        auto doc = m_fx.document(u"AU1_v.lyt"_s);
        doc->setViewToLayout([](int32_t &x, int32_t &y) { x = x / 2 + 1, y = y / 2 + 1; });
        addObject(*doc, 14, 1998, 1598, 0, 0, false, true);
        addObject(*doc, 14, 2000, 10, 0, 0, false, true);
        QCOMPARE(objectsText(*doc), u"14@1000,800 a0 w0"_s);
    }

    void backgrounds()
    {
        auto session = m_fx.session(u"AU2_x.lyt"_s);
        const LayoutDocument &doc = session->document();
        const varnoObject *m = doc.StartMarker();
        QCOMPARE((QList<int>{m->X(), m->Y(), m->Angle(), doc.BoundsWidth()}), (QList<int>{831, 549, 69, 1000}));
        QCOMPARE(doc.BackgroundScale(), float(1000.0 / 1050));

        const QString saved = options().AU34;
        // An option naming no file falls back to the program's own picture; that is
        // missing too, so the user hears about it and the layout has no bounds.
        options().AU34 = m_fx.app.file(u"nowhere.png"_s);
        const QString fallback = AppPath() + u"backgrounds"_s + QDir::separator() + u"AU34.png"_s;
        QCOMPARE(m_fx.session(u"AU4_x.lyt"_s)->document().BoundsWidth(), 0);
        QCOMPARE(m_dialogs->messages.value(0).text, fallback + u"\r\n\r\nNot found!?"_s);
        // With the program's picture present, it is used.
        QDir().mkpath(QFileInfo(fallback).absolutePath());
        QVERIFY(QImage(300, 200, QImage::Format_RGB32).save(fallback));
        QCOMPARE(m_fx.session(u"AU3_y.lyt"_s)->document().BoundsWidth(), 300);
        QFile::remove(fallback);
        // A file that is no picture is an error of the loader, not a crash.
        options().AU34 = WriteFile(m_fx.app.file(u"broken.png"_s), "not a picture");
        QCOMPARE(m_fx.session(u"AU3_z.lyt"_s)->document().BoundsWidth(), 0);
        QCOMPARE(LoggedErrors(), QStringList{u"481: Invalid picture in frmLayout.LayoutLoadBG"_s});
        options().AU34 = saved;
    }
};

QTEST_MAIN(TestLayoutDocument)
#include "tst_layoutdocument.moc"
