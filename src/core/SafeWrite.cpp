#include "core/SafeWrite.h"

#include "core/Runtime.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

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
    // Without this Qt would write straight into the file when it cannot create a
    // temporary one beside it, which is just what must not happen.
    out.setDirectWriteFallback(false);
    if (!out.open(QIODevice::WriteOnly))
        fail(out, rt::PathFileAccessError);
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
