// One table of bad inputs. Each row hands Varno a broken or hostile input and states what
// the user sees (the exact box texts, the logged lines, the status-bar refusals) and what
// the document holds afterwards; for every row the files on disk stay exactly as they
// were. The broken bytes of layouts and packs themselves are read in tst_layoutsession's
// and tst_packfile's tables.

#include "ReliabilitySupport.h"
#include "support/DocumentFixture.h"

#include <QOperatingSystemVersion>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

// What a row works on: an application folder with a 1000 x 800 background, and an AU1
// layout holding a cone and the start, saved and not edited since.
struct Env {
    DocumentFixture fx;
    std::unique_ptr<LayoutSession> base;
    QStringList status; // refusals shown in the status bar

    Env()
    {
        base = session(u"AU1_base.lyt"_s);
        addObject(base->document(), 14, 100, 100);
        addObject(base->document(), 0, 500, 400);
        base->LayoutSave(false);
        base->document().SelectionUpdate();
    }
    std::unique_ptr<LayoutSession> session(const QString &name)
    {
        auto s = std::make_unique<LayoutSession>();
        QObject::connect(&s->document(), &LayoutDocument::Refused,
                         [this](LayoutDocument::Refusal why, int16_t, int16_t) { status << Lang(why); });
        s->setFileName(fx.layoutPath(name));
        s->LayoutLoadBG();
        return s;
    }
};

// Opens a layout in a new document: "opened" or "failed", and the count.
QString open(Env &env, const QString &name)
{
    auto s = env.session(name);
    const bool ok = s->LayoutOpen();
    return (ok ? u"opened "_s : u"failed "_s) + QString::number(s->document().Objects().Count());
}

// Drops a pack at (300, 200) onto the open layout; what the layout then holds.
QString dropPack(Env &env, const QString &name)
{
    env.base->PackRead(name, 300, 200);
    return objectsText(env.base->document());
}

// Each logged line is also shown in an error box, and no other box shows.
struct Row {
    const char *name;
    std::function<void(Env &)> setup;  // puts the bad input in place
    std::function<QString(Env &)> act; // hands it to Varno; returns what Varno made of it
    QString result = {};
    QStringList logged = {}; // Varno.log lines, in order
    QStringList status = {}; // status-bar refusals
    bool needsPermissions = false;
};

const QString kBase = u"14@100,100 a0 w0; 0@500,400 a0 w0"_s;

const QList<Row> &rows()
{
    static const QList<Row> table = [] {
        const QByteArray cone = lytRecord(0, -13224, 255, 0, 29, 128);
        QList<Row> t;
        // --- layouts -----------------------------------------------------------------
        t << Row{"count low byte of 128 or more",
                 [cone](Env &e) {
                     WriteFile(e.fx.layoutPath(u"AU1_200.lyt"_s), lytHeader(251, 200, 0) + cone.repeated(200));
                 },
                 [](Env &e) { return open(e, u"AU1_200.lyt"_s); }, u"opened 200"_s};
        t << Row{"an unreadable file",
                 [cone](Env &e) {
                     const QString path = WriteFile(e.fx.layoutPath(u"AU1_locked.lyt"_s), lytHeader(251, 1, 0) + cone);
                     QFile::setPermissions(path, {});
                     // nobody must reach the file to be refused it
                     for (const QString &dir : {e.fx.app.path(), e.fx.layoutPath({})})
                         QFile::setPermissions(dir, QFileDevice::Permissions(0x7777));
                 },
                 [](Env &e) {
                     OrdinaryUser user;
                     return open(e, u"AU1_locked.lyt"_s);
                 },
                 u"failed 0"_s, {u"75: Path/File access error in frmLayout.LayoutOpen"_s}, {}, true};
        // Windows refuses too long a name as a path error; Linux fails it as a device error.
        const QString tooLong = QOperatingSystemVersion::currentType() == QOperatingSystemVersion::Windows
            ? u"75: Path/File access error"_s : u"57: Device I/O error"_s;
        t << Row{"saving to a path longer than the platform allows",
                 [](Env &e) {
                     e.base->setFileName(e.fx.layoutPath(u"AU1_"_s + QString(300, u'x') + u".lyt"_s));
                     addRecorded(*e.base, 14, 200, 200);
                 },
                 [](Env &e) {
                     const bool saved = e.base->LayoutSave(false);
                     return (saved ? u"saved "_s : u"not saved "_s) + (e.base->Edited() ? u"edited"_s : u"clean"_s);
                 },
                 u"not saved edited"_s, {tooLong + u" in frmLayout.LayoutSave"_s}};
        // --- packs -------------------------------------------------------------------
        t << Row{"a folder named like a pack",
                 [](Env &e) { QDir().mkpath(e.fx.app.file(u"packs/AU_dir.pack"_s)); },
                 [](Env &e) { return dropPack(e, u"AU_dir.pack"_s); }, kBase,
                 {QDir::toNativeSeparators(u"packs/AU_dir.pack"_s) + u"\r\n\r\nNot found!?"_s}};
        // --- pictures (a huge object picture is read by tst_imaging) -----------------
        t << Row{"a background larger than memory allows",
                 [](Env &e) {
                     WriteFile(e.fx.app.file(u"huge.png"_s), PngClaimingSize(65535, 65535));
                     options().AU1 = e.fx.app.file(u"huge.png"_s);
                 },
                 [](Env &e) {
                     auto s = e.session(u"AU1_bg.lyt"_s);
                     return (s->Background().isNull() ? u"no background "_s : u"background "_s)
                         + QString::number(s->document().BoundsWidth()) + u'x'
                         + QString::number(s->document().BoundsHeight());
                 },
                 u"no background 0x0"_s, {u"481: Invalid picture in frmLayout.LayoutLoadBG"_s}};
        return t;
    }();
    return table;
}

} // namespace

class TestBadInput : public QObject {
    Q_OBJECT
private slots:
    void badInput_data()
    {
        QTest::addColumn<int>("row");
        for (int i = 0; i < rows().size(); ++i)
            QTest::newRow(rows()[i].name) << i;
    }
    void badInput()
    {
        QFETCH(int, row);
        const Row &r = rows()[row];
        ScriptedDialogs dialogs;
        Env env;
        ClearLoggedErrors();
        r.setup(env);
        const auto before = FolderSnapshot(env.fx.app.path());
        if (r.needsPermissions && !OrdinaryUser().permissionsApply())
            QSKIP("File permissions cannot be made to apply to this process");

        const QString result = r.act(env);

        QStringList shown, boxes;
        for (const auto &m : dialogs.messages)
            shown << QDir::fromNativeSeparators(m.text);
        for (const QString &line : r.logged)
            boxes << ErrorBoxText(QDir::fromNativeSeparators(line));
        QCOMPARE(result, r.result);
        QCOMPARE(shown, boxes);
        QCOMPARE(LoggedErrors(), r.logged);
        QCOMPARE(env.status, r.status);
        QCOMPARE(FolderSnapshot(env.fx.app.path()), before);
    }
};

QTEST_GUILESS_MAIN(TestBadInput)
#include "tst_badinput.moc"
