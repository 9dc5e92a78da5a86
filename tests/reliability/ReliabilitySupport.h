#pragma once
// Helpers of the reliability suites: a record of every file under a folder, a way to be
// an ordinary user for permission cases when the tests run as root, and a small tmpfs
// for a full disk where the machine allows mounting one.

#include "support/TestSupport.h"

#include <QBuffer>
#include <QDirIterator>
#include <QImage>
#include <QMap>
#include <QTemporaryDir>
#include <QtEndian>

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
        const QString rel = QDir(root).relativeFilePath(it.next());
        if (rel != QLatin1String("Varno.log"))
            out.insert(rel, it.fileInfo().isDir() ? QByteArray("<dir>") : ReadAll(it.filePath()));
    }
    return out;
}

// File permissions bind root only after it gives up its file-system identity: while an
// OrdinaryUser lives, file access is checked as "nobody" (setfsuid clears the override
// capabilities for this thread). For anyone else it does nothing. Folders the test uses
// must be open to everyone for nobody to reach them. Windows has no such identity to
// give up: the cases that need it skip there.
class OrdinaryUser {
public:
#ifdef Q_OS_WIN
    bool permissionsApply() const { return false; }
#else
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
#endif
};

// A tmpfs of a few kilobytes, mounted while the object lives (root on Linux only;
// mounted() says whether it worked).
class SmallDisk {
public:
    explicit SmallDisk([[maybe_unused]] int kilobytes)
    {
#ifndef Q_OS_WIN
        const QByteArray options = "size=" + QByteArray::number(kilobytes) + "k,mode=0777";
        m_mounted = geteuid() == 0 && m_dir.isValid()
            && mount("tmpfs", QFile::encodeName(m_dir.path()).constData(), "tmpfs", 0, options.constData()) == 0;
#endif
    }
    ~SmallDisk()
    {
#ifndef Q_OS_WIN
        if (m_mounted)
            umount2(QFile::encodeName(m_dir.path()).constData(), MNT_DETACH);
#endif
    }
    bool mounted() const { return m_mounted; }
    QString path() const { return m_dir.path(); }
    // Fills the disk with one file until no byte more fits.
    void fill()
    {
        QFile filler(m_dir.path() + QStringLiteral("/filler"));
        if (filler.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered))
            while (filler.write("x", 1) == 1) {
            }
    }

private:
    QTemporaryDir m_dir;
    bool m_mounted = false;
};

// A small PNG whose header claims width x height (with a correct checksum, so only the
// size is a lie). Pictures like this try to make a reader allocate gigabytes.
inline QByteArray PngClaimingSize(quint32 width, quint32 height)
{
    QImage small(4, 4, QImage::Format_ARGB32);
    small.fill(Qt::red);
    QByteArray png;
    QBuffer buffer(&png);
    small.save(&buffer, "PNG"); // the writer opens the buffer
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
