// Saves of layouts driven into failures: a read-only folder, a full disk, a file locked
// or replaced while it is saved; Varno.cfg and exported pictures onto a full disk; and
// all three saved by a process killed at random points. After each, the previous file
// is whole (or the new one is, where the save could finish) and the user was told.
//
// The full disk is a 64 KB tmpfs where the suite may mount one (root); elsewhere the
// layout writer gets an injected disk-full error instead, and the two writers without a
// failure hook (Varno.cfg, pictures) skip that case.

#include "ReliabilitySupport.h"
#include "support/DocumentFixture.h"

#include "base/ConfigFile.h"
#include "base/ErrorLog.h"
#include "core/SafeWrite.h"
#include "imaging/cGDIP.h"

#include <QCoreApplication>
#include <QProcess>
#include <QRandomGenerator>
#include <QThread>
#include <QtTest>
#include <fcntl.h>
#include <sys/stat.h>
#ifdef Q_OS_WIN
#include <io.h>
#endif

using namespace Qt::StringLiterals;

namespace {

enum class Saver { Layout, Config, Picture };
// The file each saver writes; the picture is the same size for either version.
const char *const kFileNames[] = {"AU1_saved.lyt", "Varno.cfg", "view.bmp"};

// Two versions of one file of the same length, so that a whole file is exactly one of
// them. Each saver writes version 0 or 1 of its file into a folder.
struct Versions {
    Options previous = options();
    ScriptedDialogs dialogs; // records the boxes
    std::unique_ptr<LayoutSession> docs[2];
    cBitmap pictures[2];
    Saver saver;

    // background: the picture the layouts are drawn on (its size fixes the positions).
    Versions(Saver s, const QString &background) : saver(s)
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

    QString path(const QString &folder) const { return folder + u'/' + QLatin1String(kFileNames[int(saver)]); }

    // Saves version v into folder; returns what the saver returned.
    bool save(int v, const QString &folder)
    {
        switch (saver) {
        case Saver::Layout:
            docs[v]->setFileName(path(folder));
            return docs[v]->LayoutSave(false);
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
        case Saver::Picture:
            return cGDIP().SaveBitmapToFile(pictures[v], path(folder), 90);
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
    const Saver saver = Saver(atoi(argv[2]));
    const QString folder = QString::fromLocal8Bit(argv[3]);
    SetAppPath(folder);
    Versions versions(saver, QString::fromLocal8Bit(argv[4]));
    g_marker = ::open(argv[5], O_WRONLY);
    setSafeWriteHook(markStage);
    std::fputs("ready\n", stdout);
    std::fflush(stdout);
    for (unsigned n = 0;; ++n) {
        mark('p');
        versions.save(int(n % 2 == 0), folder);
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
        if (name != QLatin1String(kFileNames[int(saver)]) && name != u"Varno.log"_s && name != u"filler"_s)
            out << name;
    return out;
}

} // namespace

class TestFaultInjection : public QObject {
    Q_OBJECT

    DocumentFixture m_fx{1000, 800};

private slots:
    void cleanup() { setSafeWriteHook(nullptr); g_hook = {}; }

    // Version 0 is saved, then version 1 into the fault. A save that fails logs one line,
    // shows it in a box and leaves version 0; one that can finish leaves version 1.
    // read-only: the folder takes no new file. writable file: the same, but the file
    // itself is writable, so it is overwritten in place, old tail kept, and its other
    // names see the new content too. locked: the folder is locked against replacing
    // files just before the new file is swapped in. replaced: another program replaces
    // the file while Varno writes it.
    void failedSave_data()
    {
        QTest::addColumn<int>("saver");
        QTest::addColumn<QString>("fault");
        QTest::addColumn<QString>("told");
        const int layout = int(Saver::Layout);
        QTest::newRow("read-only") << layout << u"read-only"_s << u"75: Path/File access error in frmLayout.LayoutSave"_s;
        QTest::newRow("writable file") << layout << u"writable file"_s << QString();
        QTest::newRow("full disk") << layout << u"full disk"_s << u"61: Disk full in frmLayout.LayoutSave"_s;
        QTest::newRow("locked") << layout << u"locked"_s << u"57: Device I/O error in frmLayout.LayoutSave"_s;
        QTest::newRow("replaced") << layout << u"replaced"_s << QString();
        // A full disk once left an empty Varno.cfg or picture behind a reported success.
        QTest::newRow("config, full disk") << int(Saver::Config) << u"full disk"_s << u"61: Disk full in SaveOptions"_s;
        QTest::newRow("picture, full disk") << int(Saver::Picture) << u"full disk"_s
                                            << u"61: Disk full in cGDIP.SaveBitmapToFile"_s;
    }
    void failedSave()
    {
        QFETCH(int, saver);
        QFETCH(QString, fault);
        QFETCH(QString, told);
        Versions versions(Saver(saver), options().AU1);
        SmallDisk disk(64);
        QTemporaryDir dir, elsewhere;
        const QString folder = fault == u"full disk" && disk.mounted() ? disk.path() : dir.path();
        const QString path = versions.path(folder), link = elsewhere.path() + u"/link"_s;
        QVERIFY(versions.save(1, elsewhere.path()));
        const QByteArray next = ReadAll(versions.path(elsewhere.path()));
        QVERIFY(versions.save(0, folder));
        if (fault == u"writable file") {
            WriteFile(path, ReadAll(path) + "old tail");
            QVERIFY(QFile::setPermissions(path, QFileDevice::Permissions(0x6666)));
#ifndef Q_OS_WIN // no hard links there; the case skips below, as permissions cannot apply
            QCOMPARE(::link(QFile::encodeName(path).constData(), QFile::encodeName(link).constData()), 0);
#endif
        }
        // A read-only folder holds a read-only file, for any user.
        if (fault == u"read-only")
            QVERIFY(QFile::setPermissions(path, QFileDevice::Permissions(0x4444)));
        const QByteArray previous = ReadAll(path);
        ClearLoggedErrors();

        // A locked folder is locked by nobody, who owns it, when the suite runs as root.
#ifndef Q_OS_WIN
        if (fault == u"locked" && geteuid() == 0 && chown(QFile::encodeName(folder).constData(), 65534, 65534) != 0)
            QSKIP("The folder cannot be handed to an ordinary user here");
#endif
        const bool readOnly = fault == u"read-only" || fault == u"writable file";
        QFile::setPermissions(folder, readOnly ? QFileDevice::Permissions(0x5005) : QFileDevice::Permissions(0x7777));
        if (fault == u"full disk" && disk.mounted())
            disk.fill();
        else if (fault == u"full disk" && saver != int(Saver::Layout))
            QSKIP("No small disk can be mounted here, and this writer has no failure hook");
        g_hook = [&](SafeWriteStage stage, const QString &target) {
            if (fault == u"locked" && stage == SafeWriteStage::Written)
                QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
            if (fault == u"replaced" && stage == SafeWriteStage::HalfWritten)
                QVERIFY(QFile::remove(target) && !WriteFile(target, "another program's version").isEmpty());
            if (fault == u"full disk" && !disk.mounted() && stage == SafeWriteStage::HalfWritten)
                rt::raise(rt::DiskFull);
        };
        setSafeWriteHook(hookTrampoline);
        bool saved = false;
        {
            std::optional<OrdinaryUser> user; // the full disk is filled for everyone
            if (fault != u"full disk")
                user.emplace();
            if (user && fault != u"replaced" && !user->permissionsApply())
                QSKIP("Folder permissions cannot be made to apply to this process");
            saved = versions.save(1, folder);
        }
        QFile::setPermissions(folder, QFileDevice::Permissions(0x7777));
        QCOMPARE(strays(folder, Saver(saver)), QStringList());
        QCOMPARE(saved, told.isEmpty());
        QCOMPARE(LoggedErrors(), told.isEmpty() ? QStringList() : QStringList{told});
        const QByteArray kept = fault == u"writable file" ? next + previous.mid(next.size()) : next;
        QCOMPARE(ReadAll(path), told.isEmpty() ? kept : previous);
        if (!told.isEmpty()) {
            QVERIFY(!versions.dialogs.messages.isEmpty());
            QVERIFY(versions.dialogs.messages.last().text.startsWith(ErrorBoxText(told)));
        }
        if (fault == u"writable file")
            QCOMPARE(ReadAll(link), ReadAll(path));
    }

    // A process that saves over and over is killed at random moments. Afterwards the
    // file is always one whole version, never a mixture or a stump.
    void killedWhileSaving_data()
    {
        QTest::addColumn<int>("saver");
        QTest::addColumn<int>("kills");
        const int scale = qEnvironmentVariableIsSet("VARNO_KILLS") ? qEnvironmentVariableIntValue("VARNO_KILLS") : 1;
        QTest::newRow("layout") << int(Saver::Layout) << 200 * scale;
        QTest::newRow("config") << int(Saver::Config) << 60 * scale;
        QTest::newRow("picture") << int(Saver::Picture) << 60 * scale;
    }
    void killedWhileSaving()
    {
        QFETCH(int, saver);
        QFETCH(int, kills);
        Versions versions(Saver(saver), options().AU1);
        QTemporaryDir dir;
        const QString folder = dir.path(), path = versions.path(folder);
        QVERIFY(versions.save(1, folder));
        const QByteArray one = ReadAll(path);
        QVERIFY(versions.save(0, folder));
        const QByteArray zero = ReadAll(path);
        QVERIFY(one != zero && one.size() == zero.size());

        QTemporaryDir markerDir;
        const QString marker = WriteFile(markerDir.filePath(u"marker"_s), "-");
        QRandomGenerator rng(uint(saver) * 7919u + 17u);
        int inside = 0; // kills that hit the temporary file half or wholly written
        for (int k = 0; k < kills; ++k) {
            QProcess child;
            child.start(QCoreApplication::applicationFilePath(),
                        {u"saveloop"_s, QString::number(saver), folder, options().AU1, marker});
            QVERIFY(child.waitForReadyRead(20000));
            QCOMPARE(child.readLine().trimmed(), QByteArray("ready")); // CR LF on Windows
            QThread::usleep(rng.bounded(20000u));
            child.kill(); // SIGKILL, or TerminateProcess on Windows
            QVERIFY(child.waitForFinished(20000));
            QCOMPARE(child.exitStatus(), QProcess::CrashExit);
            inside += QByteArray("hw").contains(ReadAll(marker).at(0));

            const QByteArray now = ReadAll(path);
            QVERIFY2(now == zero || now == one, qPrintable(u"kill %1 left %2 bytes"_s.arg(k).arg(now.size())));
            // A kill may leave Qt's temporary file behind (where the file system has no
            // unnamed temporary files); it is never the saved file, and it goes.
            for (const QString &name : strays(folder, Saver(saver)))
                QFile::remove(folder + u'/' + name);
        }
        // The layout writer reports its stages; some kills must land inside it.
        if (Saver(saver) == Saver::Layout)
            QVERIFY(inside > 0);
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
