// One table of bad inputs. Each row hands Varno a broken or hostile input and states what
// the user sees (the exact box texts, the logged lines, the status-bar refusals) and what
// the document holds afterwards; for every row the files on disk stay exactly as they
// were.

#include "ReliabilitySupport.h"
#include "support/DocumentFixture.h"

#include "base/ErrorLog.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QtTest>
#include <functional>
#include <memory>

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
    QString layout(const QString &name, const QByteArray &bytes) { return WriteFile(fx.layoutPath(name), bytes); }
    QString pack(const QString &name, const QByteArray &bytes) { return WriteFile(fx.app.file(u"packs/"_s + name), bytes); }
};

// Opens a layout in a new document: "opened" or "failed", the count, and the objects
// when there are a few.
QString open(Env &env, const QString &name)
{
    auto s = env.session(name);
    const bool ok = s->LayoutOpen();
    const int n = s->document().Objects().Count();
    return (ok ? u"opened "_s : u"failed "_s) + QString::number(n)
        + (n && n <= 3 ? u": "_s + objectsText(s->document()) : QString());
}

QString dropPack(Env &env, const QString &name, int x, int y)
{
    env.base->PackRead(name, int16_t(x), int16_t(y));
    return objectsText(env.base->document());
}

QString loadLanguage(Env &env)
{
    options().Language = env.fx.app.file(u"lang/Odd.lng"_s);
    LoadLanguage();
    const QString result = Lang(50) + u'|' + Lang(160);
    options().Language = env.fx.app.file(u"lang/English.lng"_s);
    LoadLanguage();
    return result;
}

QString loadBackground(Env &env, const QString &picture)
{
    options().AU1 = picture;
    auto s = env.session(u"AU1_bg.lyt"_s);
    return (s->Background().isNull() ? u"no background "_s : u"background "_s)
        + QString::number(s->document().BoundsWidth()) + u'x' + QString::number(s->document().BoundsHeight());
}

QString errorLine(int number, const QString &where)
{
    return rt::Error(number).message() + u" in "_s + where;
}

// "{app}" in an expected text stands for the application folder.
struct Row {
    const char *name;
    std::function<void(Env &)> setup;  // puts the bad input in place
    std::function<QString(Env &)> act; // hands it to Varno; returns what Varno made of it
    QString result = {};
    QStringList boxes = {};  // message box texts, in order
    QStringList logged = {}; // Varno.log lines, in order
    QStringList status = {}; // status-bar refusals
    bool needsPermissions = false;
};

const QString kNotFound = u"\r\n\r\nNot found!?"_s;
const QString kOutside = u"Object outside layout, cannot add"_s;
const QString kBase = u"14@100,100 a0 w0; 0@500,400 a0 w0"_s;

QByteArray cone()
{
    return lytRecord(0, -13224, 255, 0, 29, 128);
}

const QList<Row> &rows()
{
    static const QList<Row> table = [] {
        const QString open62 = errorLine(62, u"frmLayout.LayoutOpen"_s);
        const QString longName = u"AU1_"_s + QString(300, u'x') + u".lyt"_s;
        QList<Row> t;
        // --- layouts (the broken bytes themselves are in tst_layoutsession's table) ---
        t << Row{"count low byte of 128 or more",
                 [](Env &e) { e.layout(u"AU1_200.lyt"_s, lytHeader(251, 200, 0) + cone().repeated(200)); },
                 [](Env &e) { return open(e, u"AU1_200.lyt"_s); }, u"opened 200"_s, {}, {}};
        t << Row{"a folder named like a layout", [](Env &e) { QDir().mkpath(e.fx.layoutPath(u"AU1_dir.lyt"_s)); },
                 [](Env &e) { return open(e, u"AU1_dir.lyt"_s); }, u"failed 0"_s,
                 {u"{app}layouts/AU1_dir.lyt"_s + kNotFound}, {}};
        t << Row{"an unreadable file",
                 [](Env &e) {
                     const QString path = e.layout(u"AU1_locked.lyt"_s, lytHeader(251, 1, 0) + cone());
                     QFile::setPermissions(path, {});
                     // nobody must reach the file to be refused it
                     for (const QString &dir : {e.fx.app.path(), e.fx.layoutPath({})})
                         QFile::setPermissions(dir, QFileDevice::Permissions(0x7777));
                 },
                 [](Env &e) {
                     OrdinaryUser user;
                     return open(e, u"AU1_locked.lyt"_s);
                 },
                 u"failed 0"_s, {ErrorBoxText(errorLine(75, u"frmLayout.LayoutOpen"_s))},
                 {errorLine(75, u"frmLayout.LayoutOpen"_s)}, {}, true};
        t << Row{"an empty file", [](Env &e) { e.layout(u"AU1_empty.lyt"_s, {}); },
                 [](Env &e) { return open(e, u"AU1_empty.lyt"_s); }, u"failed 0"_s, {ErrorBoxText(open62)}, {open62}};
        t << Row{"a layout path longer than the platform allows", {},
                 [longName](Env &e) { return open(e, longName); }, u"failed 0"_s,
                 {u"{app}layouts/"_s + longName + kNotFound}, {}};
        // Windows refuses such a name as a path error; Linux fails it as a device error.
#ifdef Q_OS_WIN
        const int tooLong = 75;
#else
        const int tooLong = 57;
#endif
        t << Row{"saving to a path longer than the platform allows", {},
                 [longName](Env &e) {
                     e.base->setFileName(e.fx.layoutPath(longName));
                     addRecorded(*e.base, 14, 200, 200);
                     const bool saved = e.base->LayoutSave(false);
                     return (saved ? u"saved "_s : u"not saved "_s) + (e.base->Edited() ? u"edited"_s : u"clean"_s);
                 },
                 u"not saved edited"_s, {ErrorBoxText(errorLine(tooLong, u"frmLayout.LayoutSave"_s))},
                 {errorLine(tooLong, u"frmLayout.LayoutSave"_s)}};
        // --- packs -------------------------------------------------------------------
        t << Row{"pack with a zero box", [](Env &e) { e.pack(u"AU_zero.pack"_s, PackBytes(0, 0, {{14, 0, 0, 90, 0}})); },
                 [](Env &e) { return dropPack(e, u"AU_zero.pack"_s, 300, 200); }, kBase + u"; 14@300,200 a90 w0"_s};
        t << Row{"pack with a negative box",
                 [](Env &e) { e.pack(u"AU_neg.pack"_s, PackBytes(-40, -20, {{14, 0, 0, 0, 0}})); },
                 [](Env &e) { return dropPack(e, u"AU_neg.pack"_s, 300, 200); }, kBase + u"; 14@320,210 a0 w0"_s};
        t << Row{"pack with a huge box",
                 [](Env &e) {
                     e.pack(u"AU_huge.pack"_s, PackBytes(32767, 32767, {{14, 0, 0, 0, 0}, {14, 16383, 16383, 0, 0}}));
                 },
                 [](Env &e) { return dropPack(e, u"AU_huge.pack"_s, 300, 200); }, kBase + u"; 14@300,200 a0 w0"_s, {},
                 {}, {kOutside}};
        t << Row{"a folder named like a pack", [](Env &e) { QDir().mkpath(e.fx.app.file(u"packs/AU_dir.pack"_s)); },
                 [](Env &e) { return dropPack(e, u"AU_dir.pack"_s, 300, 200); }, kBase,
                 {ErrorBoxText(u"packs/AU_dir.pack"_s + kNotFound)},
                 {QDir::toNativeSeparators(u"packs/AU_dir.pack"_s) + kNotFound}};
        // --- language files ----------------------------------------------------------
        t << Row{"language file with bytes the code page does not define",
                 [](Env &e) {
                     WriteFile(e.fx.app.file(u"lang/Odd.lng"_s),
                               QByteArray("050 Opt\x81\x8Dons\r\n160 \xFF") + '\0' + "x\r\n");
                 },
                 [](Env &e) { return loadLanguage(e); }, u"Opt\u0081\u008Dons|\u00FF\u0000x"_s};
        t << Row{"UTF-8 language file with invalid sequences",
                 [](Env &e) {
                     WriteFile(e.fx.app.file(u"lang/Odd.lng"_s),
                               "\xEF\xBB\xBF" "050 Opt\xC3(ons\r\n160 \xF0\x80\r\n");
                 },
                 [](Env &e) { return loadLanguage(e); }, u"Opt\uFFFD(ons|\uFFFD\uFFFD"_s};
        // --- pictures ----------------------------------------------------------------
        t << Row{"a background larger than memory allows",
                 [](Env &e) { WriteFile(e.fx.app.file(u"huge.png"_s), PngClaimingSize(65535, 65535)); },
                 [](Env &e) { return loadBackground(e, e.fx.app.file(u"huge.png"_s)); }, u"no background 0x0"_s,
                 {ErrorBoxText(errorLine(481, u"frmLayout.LayoutLoadBG"_s))}, {errorLine(481, u"frmLayout.LayoutLoadBG"_s)}};
        t << Row{"an object picture larger than memory allows",
                 [](Env &e) { WriteFile(e.fx.app.file(u"objects/huge.png"_s), PngClaimingSize(40000, 40000)); },
                 [](Env &) {
                     AddItem(20, 1, u"huge"_s, 20, 20, u"huge"_s, 255, 255, 255, false);
                     cBitmap placeholder;
                     placeholder.CreateFromResource(100);
                     return ObjectKindAt(20).Image.Handle() == placeholder.Handle() ? u"placeholder"_s : u"other"_s;
                 },
                 u"placeholder"_s};
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
        const Options saved = options();
        {
            ScriptedDialogs dialogs;
            Env env;
            dialogs.messages.clear();
            ClearLoggedErrors();
            if (r.setup)
                r.setup(env);
            const auto before = FolderSnapshot(env.fx.app.path());
            const QString baseBefore = objectsText(env.base->document());
            if (r.needsPermissions && !OrdinaryUser().permissionsApply())
                QSKIP("File permissions cannot be made to apply to this process");

            const QString result = r.act(env);

            const QString app = QDir::fromNativeSeparators(env.fx.app.path());
            auto expand = [&](QStringList list) {
                for (QString &s : list)
                    s.replace(u"{app}"_s, app);
                return list;
            };
            QStringList shown;
            for (const auto &m : dialogs.messages)
                shown << QDir::fromNativeSeparators(m.text);
            QCOMPARE(result, r.result);
            QCOMPARE(shown, expand(r.boxes));
            QCOMPARE(LoggedErrors(), r.logged);
            QCOMPARE(env.status, r.status);
            QCOMPARE(FolderSnapshot(env.fx.app.path()), before);
            // Every row that is not a pack drop leaves the open layout alone.
            if (!QByteArray(r.name).startsWith("pack with a"))
                QCOMPARE(objectsText(env.base->document()).left(baseBefore.size()), baseBefore);
        }
        options() = saved;
    }
};

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    TestBadInput test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_badinput.moc"
