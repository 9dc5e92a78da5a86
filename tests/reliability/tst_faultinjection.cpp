// Saves of layouts, packs, Varno.cfg and exported pictures driven into failures: a
// read-only folder, a full disk, a file locked or replaced while it is saved, and a
// process killed at random points of saving. After each, the previous file is whole
// (or the new one is, where the save could finish) and the user was told.
//
// The full disk is a 64 KB tmpfs where the suite may mount one (root); elsewhere the
// layout and pack writers get an injected disk-full error instead, and the two writers
// without a failure hook (Varno.cfg, pictures) skip that case.

#include "ReliabilitySupport.h"
#include "support/DocumentFixture.h"

#include "base/ConfigFile.h"
#include "base/ErrorLog.h"
#include "core/SafeWrite.h"
#include "imaging/cGDIP.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QThread>
#include <QtTest>
#include <memory>
#include <fcntl.h>
#include <sys/stat.h>
#ifdef Q_OS_WIN
#include <io.h>
#endif

using namespace Qt::StringLiterals;

namespace {

enum class Saver { Layout, Pack, Config, Picture };
const char *const kSaverNames[] = {"layout", "pack", "config", "picture"};

// Two versions of one file of the same length, so that a whole file is exactly one of
// them. Each saver writes version 0 or 1 of its file into a folder.
struct Versions {
    Options previous = options();
    std::unique_ptr<LayoutSession> docs[2];
    cBitmap pictures[2];
    ScriptedDialogs *dialogs = nullptr;
    Saver saver;

    // background: the picture the layouts are drawn on (its size fixes the positions).
    Versions(Saver s, const QString &background, ScriptedDialogs *d) : dialogs(d), saver(s)
    {
        options().AU1 = background;
        for (int v = 0; v < 2; ++v) {
            docs[v] = std::make_unique<LayoutSession>();
            docs[v]->setFileName(u"AU1_versions.lyt"_s);
            docs[v]->LayoutLoadBG();
            LayoutDocument &doc = docs[v]->document();
            for (int i = 0; i < 300; ++i)
                addObject(doc, 14, 10 + i * 3, 100, 0, 0, true);
            addObject(doc, 14, 500, 300, v ? 90 : 45, 0, true);
            doc.SelectionUpdate();
            pictures[v].CreateFromScan0(64, 48);
            pictures[v].image().fill(v ? Qt::red : Qt::blue);
        }
    }
    ~Versions() { options() = previous; }

    static QString fileName(Saver s)
    {
        switch (s) {
        case Saver::Layout: return u"AU1_saved.lyt"_s;
        case Saver::Pack: return u"AU_saved.pack"_s;
        case Saver::Config: return u"Varno.cfg"_s;
        case Saver::Picture: return u"view.bmp"_s; // same size for either version
        }
        return {};
    }

    // Saves version v into folder; returns what the saver returned (true for the writers
    // that report only through the log).
    bool save(int v, const QString &folder)
    {
        const QString path = folder + u'/' + fileName(saver);
        switch (saver) {
        case Saver::Layout: {
            docs[v]->setFileName(path);
            return docs[v]->LayoutSave(false);
        }
        case Saver::Pack: {
            const int before = LoggedErrors().size();
            dialogs->saveAnswers = QStringList{path};
            docs[v]->PackWrite();
            return LoggedErrors().size() == before;
        }
        case Saver::Config: {
            const QString app = AppPath();
            SetAppPath(folder);
            const QString background = options().AU1;
            options() = Options::defaults();
            options().AU1 = background;
            options().SavePercent = v ? 20 : 10;
            SetLang(50, u"Options"_s); // the banner's one translated word
            const bool ok = SaveOptions({});
            SetAppPath(app);
            return ok;
        }
        case Saver::Picture: {
            cGDIP gdip;
            return gdip.SaveBitmapToFile(pictures[v], path, 90);
        }
        }
        return false;
    }
};

// Where the child of the kill test is: before a save reaches the disk ('p'), at a stage
// of WriteKeepingTail ('o' opened, 'h' half written, 'w' written, 'r' replaced). One
// byte in a file, written with a system call, so a kill cannot lose it.
int g_marker = -1;
void mark(char where)
{
#ifdef Q_OS_WIN
    if (g_marker >= 0 && (_lseek(g_marker, 0, SEEK_SET) != 0 || _write(g_marker, &where, 1) != 1))
#else
    if (g_marker >= 0 && pwrite(g_marker, &where, 1, 0) != 1)
#endif
        _exit(3);
}
void markStage(SafeWriteStage stage, const QString &)
{
    mark("ohwr"[int(stage)]);
}

// The child of the kill test: "saveloop <saver> <folder> <background> <marker>" saves
// versions 1 and 0 of its file into folder, one after the other, until it is killed.
// It says "ready" once it is about to start.
int saveLoop(char **argv)
{
    ScriptedDialogs dialogs;
    const Saver saver = Saver(atoi(argv[2]));
    const QString folder = QString::fromLocal8Bit(argv[3]);
    SetAppPath(folder);
    Versions versions(saver, QString::fromLocal8Bit(argv[4]), &dialogs);
    g_marker = ::open(argv[5], O_WRONLY);
    setSafeWriteHook(markStage);
    std::fputs("ready\n", stdout);
    std::fflush(stdout);
    for (unsigned n = 0;; ++n) {
        mark('p');
        versions.save(int(n % 2 == 0), folder);
        dialogs.messages.clear();
        ClearLoggedErrors();
    }
}

// Breaks a save at one stage of WriteKeepingTail.
std::function<void(SafeWriteStage, const QString &)> g_hook;
void hookTrampoline(SafeWriteStage stage, const QString &path)
{
    if (g_hook)
        g_hook(stage, path);
}

// Files in a folder other than the one saved and the error log: what a failed save
// must not leave behind.
QStringList strays(const QString &folder, Saver saver)
{
    QStringList out;
    for (const QString &name : QDir(folder).entryList(QDir::Files | QDir::Hidden))
        if (name != Versions::fileName(saver) && name != u"Varno.log"_s && name != u"filler"_s)
            out << name;
    return out;
}

} // namespace

class TestFaultInjection : public QObject {
    Q_OBJECT

    DocumentFixture m_fx{1000, 800};

    // One row per writer, with the error line it is expected to log.
    static void savers(const QStringList &lines)
    {
        QTest::addColumn<int>("saver");
        QTest::addColumn<QString>("told");
        for (int s = 0; s < 4; ++s)
            QTest::newRow(kSaverNames[s]) << s << lines[s];
    }

    // The one logged error of a failed save, and that its box was shown.
    static void checkTold(const ScriptedDialogs &dialogs, const QString &expectedLine)
    {
        QCOMPARE(LoggedErrors(), QStringList{expectedLine});
        QVERIFY(!dialogs.messages.isEmpty());
        QVERIFY2(dialogs.messages.last().text.startsWith(ErrorBoxText(expectedLine)),
                 qPrintable(dialogs.messages.last().text));
    }

private slots:
    void init() { ClearLoggedErrors(); setSafeWriteHook(nullptr); g_hook = {}; }
    void cleanup() { setSafeWriteHook(nullptr); g_hook = {}; }

    // A folder that takes no new file: the save fails and says so, unless the file itself
    // is writable (no message expected), when it is overwritten in place, old tail kept,
    // so that its other names see the new content too.
    void readOnlyFolder_data()
    {
        savers({u"75: Path/File access error in frmLayout.LayoutSave"_s,
                u"75: Path/File access error in frmLayout.PackWrite"_s, u"70: Permission denied in SaveOptions"_s,
                u"70: Permission denied in cGDIP.SaveBitmapToFile"_s});
        QTest::newRow("layout, file writable") << int(Saver::Layout) << QString();
        QTest::newRow("pack, file writable") << int(Saver::Pack) << QString();
    }
    void readOnlyFolder()
    {
        QFETCH(int, saver);
        QFETCH(QString, told);
        ScriptedDialogs dialogs;
        Versions versions(Saver(saver), options().AU1, &dialogs);
        QTemporaryDir dir, elsewhere;
        const QString folder = dir.path();
        const QString path = folder + u'/' + Versions::fileName(Saver(saver));
        const QString link = elsewhere.path() + u"/link"_s;
        QVERIFY(versions.save(0, folder));
        if (told.isEmpty()) {
            WriteFile(path, ReadAll(path) + "old tail");
            QVERIFY(QFile::setPermissions(path, QFileDevice::Permissions(0x6666)));
#ifndef Q_OS_WIN // no hard links there; the case skips below, as permissions cannot apply
            QCOMPARE(::link(QFile::encodeName(path).constData(), QFile::encodeName(link).constData()), 0);
#endif
        }
        const QByteArray previous = ReadAll(path);
        QVERIFY(!previous.isEmpty());
        dialogs.messages.clear();
        ClearLoggedErrors();

        QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::ExeOwner | QFileDevice::ReadOther
                                          | QFileDevice::ExeOther);
        bool saved = false;
        {
            OrdinaryUser user;
            if (!user.permissionsApply())
                QSKIP("Folder permissions cannot be made to apply to this process");
            saved = versions.save(1, folder);
        }
        QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        QCOMPARE(strays(folder, Saver(saver)), QStringList());
        if (told.isEmpty()) {
            QVERIFY(saved);
            QCOMPARE(LoggedErrors(), QStringList());
            QVERIFY(versions.save(1, elsewhere.path()));
            const QByteArray next = ReadAll(elsewhere.path() + u'/' + Versions::fileName(Saver(saver)));
            QCOMPARE(ReadAll(path), next + previous.mid(next.size()));
            QCOMPARE(ReadAll(link), ReadAll(path));
            return;
        }
        QVERIFY(!saved);
        checkTold(dialogs, told);
        QCOMPARE(ReadAll(path), previous);
    }

    void fullDisk_data()
    {
        savers({u"61: Disk full in frmLayout.LayoutSave"_s, u"61: Disk full in frmLayout.PackWrite"_s,
                u"61: Disk full in SaveOptions"_s, u"61: Disk full in cGDIP.SaveBitmapToFile"_s});
    }
    void fullDisk()
    {
        QFETCH(int, saver);
        QFETCH(QString, told);
        ScriptedDialogs dialogs;
        Versions versions(Saver(saver), options().AU1, &dialogs);
        SmallDisk disk(64);
        QTemporaryDir plain;
        const QString folder = disk.mounted() ? disk.path() : plain.path();
        QVERIFY(versions.save(0, folder));
        const QByteArray previous = ReadAll(folder + u'/' + Versions::fileName(Saver(saver)));
        dialogs.messages.clear();
        ClearLoggedErrors();

        if (disk.mounted()) {
            disk.fill();
        } else {
            if (Saver(saver) == Saver::Config || Saver(saver) == Saver::Picture)
                QSKIP("No small disk can be mounted here, and this writer has no failure hook");
            g_hook = [](SafeWriteStage stage, const QString &) {
                if (stage == SafeWriteStage::HalfWritten)
                    rt::raise(rt::DiskFull);
            };
            setSafeWriteHook(hookTrampoline);
        }
        const bool saved = versions.save(1, folder);
        QCOMPARE(ReadAll(folder + u'/' + Versions::fileName(Saver(saver))).size(), previous.size());
        QVERIFY(!saved);
        checkTold(dialogs, told);
        QCOMPARE(ReadAll(folder + u'/' + Versions::fileName(Saver(saver))), previous);
        QCOMPARE(strays(folder, Saver(saver)), QStringList());
        qInfo("full disk: %s", disk.mounted() ? "64 KB tmpfs" : "injected write failure");
    }

    // Another program replaces the file while Varno writes it: Varno's save still lands
    // whole. Or the folder is locked against replacing files just before Varno swaps its
    // new file in: the save fails, says so, and the file is as it was.
    void lockedOrReplaced_data()
    {
        QTest::addColumn<int>("saver");
        QTest::addColumn<bool>("lock");
        QTest::addColumn<QString>("told");
        QTest::newRow("layout replaced") << int(Saver::Layout) << false << QString();
        QTest::newRow("pack replaced") << int(Saver::Pack) << false << QString();
        QTest::newRow("layout locked") << int(Saver::Layout) << true
                                       << u"57: Device I/O error in frmLayout.LayoutSave"_s;
        QTest::newRow("pack locked") << int(Saver::Pack) << true << u"57: Device I/O error in frmLayout.PackWrite"_s;
    }
    void lockedOrReplaced()
    {
        QFETCH(int, saver);
        QFETCH(bool, lock);
        QFETCH(QString, told);
        ScriptedDialogs dialogs;
        Versions versions(Saver(saver), options().AU1, &dialogs);
        QTemporaryDir dir;
        const QString folder = dir.path();
        const QString path = folder + u'/' + Versions::fileName(Saver(saver));
        QVERIFY(versions.save(0, folder));
        const QByteArray previous = ReadAll(path);
        QVERIFY(versions.save(1, folder));
        const QByteArray next = ReadAll(path);
        QVERIFY(versions.save(0, folder));
        dialogs.messages.clear();
        ClearLoggedErrors();

        // The locking is done as nobody, who owns the folder, when the suite runs as root.
#ifdef Q_OS_WIN
        if (lock)
            QSKIP("Windows folders have no permission bits to lock a save out with");
#else
        if (lock && geteuid() == 0 && chown(QFile::encodeName(folder).constData(), 65534, 65534) != 0)
            QSKIP("The folder cannot be handed to an ordinary user here");
#endif
        QFile::setPermissions(folder, QFileDevice::Permissions(0x7777));
        g_hook = [&](SafeWriteStage stage, const QString &target) {
            if (lock && stage == SafeWriteStage::Written)
                QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
            if (!lock && stage == SafeWriteStage::HalfWritten)
                QVERIFY(QFile::remove(target) && !WriteFile(target, "another program's version").isEmpty());
        };
        setSafeWriteHook(hookTrampoline);
        bool saved = false;
        {
            OrdinaryUser user;
            if (lock && !user.permissionsApply())
                QSKIP("Folder permissions cannot be made to apply to this process");
            saved = versions.save(1, folder);
        }
        setSafeWriteHook(nullptr);
        QFile::setPermissions(folder, QFileDevice::Permissions(0x7777));
        if (lock) {
            QVERIFY(!saved);
            checkTold(dialogs, told);
            QCOMPARE(ReadAll(path), previous);
        } else {
            QVERIFY(saved);
            QCOMPARE(LoggedErrors(), QStringList());
            QCOMPARE(ReadAll(path), next);
        }
        QCOMPARE(strays(folder, Saver(saver)), QStringList());
    }

    // A process that saves over and over is killed at random moments. Afterwards the
    // file is always one whole version, never a mixture or a stump.
    void killedWhileSaving_data()
    {
        QTest::addColumn<int>("saver");
        QTest::addColumn<int>("kills");
        const int scale = qEnvironmentVariableIsSet("VARNO_KILLS") ? qEnvironmentVariableIntValue("VARNO_KILLS") : 1;
        QTest::newRow("layout") << int(Saver::Layout) << 200 * scale;
        QTest::newRow("pack") << int(Saver::Pack) << 60 * scale;
        QTest::newRow("config") << int(Saver::Config) << 60 * scale;
        QTest::newRow("picture") << int(Saver::Picture) << 60 * scale;
    }
    void killedWhileSaving()
    {
        QFETCH(int, saver);
        QFETCH(int, kills);
        ScriptedDialogs dialogs;
        Versions versions(Saver(saver), options().AU1, &dialogs);
        QTemporaryDir dir;
        const QString folder = dir.path();
        const QString path = folder + u'/' + Versions::fileName(Saver(saver));
        QVERIFY(versions.save(1, folder));
        const QByteArray one = ReadAll(path);
        QVERIFY(versions.save(0, folder));
        const QByteArray zero = ReadAll(path);
        QVERIFY(one != zero && one.size() == zero.size());

        QTemporaryDir markerDir;
        const QString marker = WriteFile(markerDir.filePath(u"marker"_s), "-");
        QRandomGenerator rng(uint(saver) * 7919u + 17u);
        QMap<char, int> where; // the point of the save each kill landed at
        for (int k = 0; k < kills; ++k) {
            QProcess child;
            child.start(QCoreApplication::applicationFilePath(),
                        {u"saveloop"_s, QString::number(saver), folder, options().AU1, marker});
            QVERIFY(child.waitForStarted());
            QVERIFY(child.waitForReadyRead(20000));
            QCOMPARE(child.readLine().trimmed(), QByteArray("ready")); // CR LF on Windows
            QThread::usleep(rng.bounded(20000u));
            child.kill(); // SIGKILL, or TerminateProcess on Windows
            QVERIFY(child.waitForFinished(20000));
            QCOMPARE(child.exitStatus(), QProcess::CrashExit);
            ++where[ReadAll(marker).at(0)];

            const QByteArray now = ReadAll(path);
            QVERIFY2(now == zero || now == one, qPrintable(u"kill %1 left %2 bytes, not %3: %4"_s.arg(k)
                                                                 .arg(now.size())
                                                                 .arg(zero.size())
                                                                 .arg(QString::fromLatin1(now.toPercentEncoding(" /\\_|'`,()")))));
            // A kill may leave Qt's temporary file behind (where the file system has no
            // unnamed temporary files); it is never the saved file, and it goes.
            for (const QString &name : strays(folder, Saver(saver)))
                QFile::remove(folder + u'/' + name);
        }
        QString landed;
        for (auto it = where.cbegin(); it != where.cend(); ++it)
            landed += u' ' + QChar::fromLatin1(it.key()) + u'=' + QString::number(it.value());
        qInfo("%d kills of the %s writer; where they landed (p before writing, o opened, h half written, "
              "w written, r replaced):%s", kills, kSaverNames[saver], qPrintable(landed));
        // The layout and pack writers report their stages; some kills must hit the
        // temporary file half or wholly written.
        if (Saver(saver) == Saver::Layout || Saver(saver) == Saver::Pack)
            QVERIFY2(where.value('h') + where.value('w') > 0, qPrintable(landed));
    }
};

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc == 6 && qstrcmp(argv[1], "saveloop") == 0)
        return saveLoop(argv);
    TestFaultInjection test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_faultinjection.moc"
