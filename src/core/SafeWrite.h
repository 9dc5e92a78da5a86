#pragma once
// Layouts and packs are rewritten without ever losing the old file: the new bytes go
// to a temporary file beside it, which replaces the original only once it is complete.
// The result still matches what the simulator's tools expect of these files: when the
// new content is shorter than the old file, the old file's bytes beyond the new end
// are kept after it, exactly as an in-place overwrite would have left them.
// A folder that refuses new files (read-only for this user) cannot take the temporary
// file; there a writable file is overwritten in place instead, as the simulator's own
// tools would, and its other hard links see the new content too.

#include <QByteArray>
#include <QString>

enum class SafeWriteStage {
    Opened,        // the temporary file exists and nothing is written yet
    HalfWritten,   // part of the content is in the temporary file (flushed)
    Written,       // everything is in the temporary file, flushed, not yet in place
    Replaced,      // the original has been replaced
};

// Writes content to path, followed by the old file's tail beyond content's length.
// The old file's permissions are kept. Any failure is an rt::Error and leaves the
// old file as it was, except for a failure while writing in place.
void WriteKeepingTail(const QString &path, const QByteArray &content);

// For tests: called at each stage of every WriteKeepingTail. A hook may throw an
// rt::Error to make the write fail at that point, or end the process to show that
// the old file survives. nullptr removes it.
using SafeWriteHook = void (*)(SafeWriteStage stage, const QString &path);
void setSafeWriteHook(SafeWriteHook hook);
