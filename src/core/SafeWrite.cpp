#include "core/SafeWrite.h"

#include "base/Runtime.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <cstdlib>
#include <unistd.h>
#endif

namespace {
SafeWriteHook g_hook = nullptr;

void stage(SafeWriteStage s, const QString &path)
{
    if (g_hook)
        g_hook(s, path);
}

[[noreturn]] void fail(QFileDevice &f, int fallback)
{
    int number = fallback;
    switch (f.error()) {
    case QFileDevice::PermissionsError: number = rt::PermissionDenied; break;
    case QFileDevice::OpenError: number = rt::PathFileAccessError; break;
    case QFileDevice::ResourceError: number = rt::DiskFull; break;
    default: break;
    }
    rt::raise(number);
}

// Whether the folder refuses to take a new file because of its permissions (rather
// than, say, a full disk, where writing in place could leave half a file behind).
bool folderRefusesNewFiles(const QString &folder)
{
#ifdef Q_OS_UNIX
    QByteArray name = QFile::encodeName(folder) + "/.varno-probe-XXXXXX";
    const int fd = ::mkstemp(name.data());
    if (fd < 0)
        return errno == EACCES || errno == EPERM;
    ::close(fd);
    ::unlink(name.constData());
    return false;
#else
    return !QFileInfo(folder).isWritable();
#endif
}

// Overwrites the file from its start without truncating it: the old tail stays, and
// every hard link to the file sees the new bytes. Only for folders that take no
// temporary file, where the old file cannot be kept whole anyway.
bool writeInPlace(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite)) // ReadWrite, because WriteOnly would truncate
        return false;
    if (file.write(content) != content.size() || !file.flush())
        fail(file, rt::DeviceIOError);
    file.close();
    if (file.error() != QFileDevice::NoError)
        fail(file, rt::DeviceIOError);
    return true;
}
} // namespace

void setSafeWriteHook(SafeWriteHook hook)
{
    g_hook = hook;
}

void WriteKeepingTail(const QString &path, const QByteArray &content)
{
    QByteArray data = content;
    const QFileInfo info(path);
    if (info.exists()) {
        if (info.isDir())
            rt::raise(rt::PathFileAccessError);
        QFile old(path);
        if (!old.open(QIODevice::ReadOnly))
            fail(old, rt::PathFileAccessError);
        if (old.size() > content.size()) {
            if (!old.seek(content.size()))
                fail(old, rt::DeviceIOError);
            const QByteArray tail = old.readAll();
            if (tail.size() != old.size() - content.size())
                rt::raise(rt::DeviceIOError);
            data.append(tail);
        }
    }

    QSaveFile out(path);
    // Qt's own fallback for a folder without a temporary file would truncate the file
    // and take over on more failures than a refusing folder; the one below does neither.
    out.setDirectWriteFallback(false);
    if (!out.open(QIODevice::WriteOnly)) {
        if (info.exists() && folderRefusesNewFiles(info.absolutePath()) && writeInPlace(path, content))
            return;
        fail(out, rt::PathFileAccessError);
    }
    try {
        stage(SafeWriteStage::Opened, path);
        const qint64 half = data.size() / 2;
        if (out.write(data.constData(), half) != half || !out.flush())
            fail(out, rt::DeviceIOError);
        stage(SafeWriteStage::HalfWritten, path);
        if (out.write(data.constData() + half, data.size() - half) != data.size() - half || !out.flush())
            fail(out, rt::DeviceIOError);
        stage(SafeWriteStage::Written, path);
    } catch (...) {
        out.cancelWriting();
        throw;
    }
    if (info.exists())
        out.setPermissions(info.permissions());
    if (!out.commit())
        fail(out, rt::DeviceIOError);
    stage(SafeWriteStage::Replaced, path);
}
