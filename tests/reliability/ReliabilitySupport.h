#pragma once
// Helpers of the reliability suites: a record of every file under a folder, a way to be
// an ordinary user for permission cases when the tests run as root, and a small tmpfs
// for full and read-only disks where the machine allows mounting one.

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QtEndian>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <QString>
#include <QTemporaryDir>

#ifndef Q_OS_WIN
#include <sys/fsuid.h>
#include <sys/mount.h>
#include <unistd.h>
#endif

// Every file and folder below root with its bytes (folders as "<dir>"), except the
// error log, which the program appends to by design.
inline QMap<QString, QByteArray> FolderSnapshot(const QString &root)
{
    QMap<QString, QByteArray> out;
    QDirIterator it(root, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const QString rel = QDir(root).relativeFilePath(path);
        if (rel == QLatin1String("Varno.log"))
            continue;
        if (it.fileInfo().isDir()) {
            out.insert(rel, "<dir>");
        } else {
            QFile f(path);
            out.insert(rel, f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<unreadable>"));
        }
    }
    return out;
}

#ifdef Q_OS_WIN
// Windows has no file-system identity to give up and no tmpfs to mount: the cases that
// need them skip there.
class OrdinaryUser {
public:
    OrdinaryUser() {}
    ~OrdinaryUser() {}
    bool permissionsApply() const { return false; }
};
class SmallDisk {
public:
    explicit SmallDisk(int) {}
    bool mounted() const { return false; }
    QString path() const { return QString(); }
    bool remountReadOnly() { return false; }
    void fill() {}
};
#else
// File permissions bind root only after it gives up its file-system identity: while an
// OrdinaryUser lives, file access is checked as "nobody" (setfsuid clears the override
// capabilities for this thread). For anyone else it does nothing. Folders the test uses
// must be open to everyone for nobody to reach them.
class OrdinaryUser {
public:
    OrdinaryUser()
    {
        if (geteuid() != 0)
            return;
        setfsgid(65534);
        setfsuid(65534);
        m_switched = setfsuid(uid_t(-1)) == 65534;
    }
    ~OrdinaryUser()
    {
        if (geteuid() == 0) {
            setfsuid(0);
            setfsgid(0);
        }
    }
    // Whether permissions now apply to this process.
    bool permissionsApply() const { return geteuid() != 0 || m_switched; }

private:
    bool m_switched = false;
};

// A tmpfs of a few kilobytes, mounted while the object lives (root only; mounted() says
// whether it worked). remountReadOnly() turns it into a read-only file system.
class SmallDisk {
public:
    explicit SmallDisk(int kilobytes)
    {
        if (geteuid() != 0 || !m_dir.isValid())
            return;
        const QByteArray options = "size=" + QByteArray::number(kilobytes) + "k,mode=0777";
        m_mounted = mount("tmpfs", QFile::encodeName(m_dir.path()).constData(), "tmpfs", 0, options.constData()) == 0;
        m_options = options;
    }
    ~SmallDisk()
    {
        if (m_mounted)
            umount2(QFile::encodeName(m_dir.path()).constData(), MNT_DETACH);
    }
    bool mounted() const { return m_mounted; }
    QString path() const { return m_dir.path(); }
    bool remountReadOnly()
    {
        return m_mounted
            && mount("tmpfs", QFile::encodeName(m_dir.path()).constData(), "tmpfs", MS_REMOUNT | MS_RDONLY,
                     m_options.constData()) == 0;
    }
    // Fills the disk with one file until no byte more fits.
    void fill()
    {
        QFile filler(m_dir.path() + QStringLiteral("/filler"));
        if (!filler.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered))
            return;
        const QByteArray block(512, 'x');
        while (filler.write(block) == block.size()) {
        }
        while (filler.write("x", 1) == 1) {
        }
    }

private:
    QTemporaryDir m_dir;
    QByteArray m_options;
    bool m_mounted = false;
};
#endif

// A small PNG whose header claims width x height (with a correct checksum, so only the
// size is a lie). Pictures like this try to make a reader allocate gigabytes.
inline QByteArray PngClaimingSize(quint32 width, quint32 height)
{
    QImage small(4, 4, QImage::Format_ARGB32);
    small.fill(Qt::red);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    small.save(&buffer, "PNG");
    const QByteArray png = buffer.data();
    QByteArray ihdr = png.mid(12, 17); // "IHDR" and its 13 bytes
    qToBigEndian<quint32>(width, ihdr.data() + 4);
    qToBigEndian<quint32>(height, ihdr.data() + 8);
    quint32 crc = 0xffffffffu;
    for (char c : ihdr) {
        crc ^= quint8(c);
        for (int k = 0; k < 8; ++k)
            crc = (crc >> 1) ^ (0xedb88320u & (0u - (crc & 1u)));
    }
    QByteArray sum(4, 0);
    qToBigEndian<quint32>(~crc, sum.data());
    return png.left(12) + ihdr + sum + png.mid(33);
}
