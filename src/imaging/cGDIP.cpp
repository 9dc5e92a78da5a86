#include "imaging/cGDIP.h"

#include "base/ErrorLog.h"
#include "base/Language.h"
#include "base/Dialogs.h"
#include "base/Runtime.h"
#include "imaging/PictureEncoders.h"
#include "imaging/cBitmap.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>

namespace {

// The run-time error for a file that could not be opened or replaced.
[[noreturn]] void raiseFileError(const QString &fileName)
{
    const QFileInfo info(fileName);
    if (!info.absoluteDir().exists())
        rt::raise(rt::PathNotFound);
    rt::raise(rt::PermissionDenied);
}

} // namespace

cGDIP::cGDIP() = default;
cGDIP::~cGDIP() = default;

const QList<ImageEncoder> &cGDIP::encoders()
{
    static const QList<ImageEncoder> list{
        {QStringLiteral("image/bmp"), QStringLiteral("BMP"),
         {QStringLiteral("*.BMP"), QStringLiteral("*.DIB"), QStringLiteral("*.RLE")}},
        {QStringLiteral("image/jpeg"), QStringLiteral("JPEG"),
         {QStringLiteral("*.JPG"), QStringLiteral("*.JPEG"), QStringLiteral("*.JPE"), QStringLiteral("*.JFIF")}},
        {QStringLiteral("image/gif"), QStringLiteral("GIF"), {QStringLiteral("*.GIF")}},
        {QStringLiteral("image/tiff"), QStringLiteral("TIFF"), {QStringLiteral("*.TIF"), QStringLiteral("*.TIFF")}},
        {QStringLiteral("image/png"), QStringLiteral("PNG"), {QStringLiteral("*.PNG")}},
    };
    return list;
}

QString cGDIP::extensionOf(const QString &fileName)
{
    const qsizetype dot = fileName.lastIndexOf(QLatin1Char('.'));
    return dot < 0 ? fileName : fileName.mid(dot + 1);
}

const ImageEncoder *cGDIP::encoderFor(const QString &extension)
{
    const QString wanted = QStringLiteral("*.") + extension;
    for (const ImageEncoder &encoder : encoders())
        for (const QString &pattern : encoder.patterns)
            if (pattern.compare(wanted, Qt::CaseInsensitive) == 0)
                return &encoder;
    return nullptr;
}

bool cGDIP::SaveBitmapToFile(const cBitmap &bitmap, const QString &fileName, int quality)
{
    const QString extension = extensionOf(fileName);
    const ImageEncoder *encoder = encoderFor(extension);
    if (!encoder) {
        ShowUnknownFormat(extension);
        return false;
    }
    bool written = false;
    guarded(QStringLiteral("cGDIP.SaveBitmapToFile"), [&] {
        if (bitmap.isNull())
            rt::raise(rt::InvalidCall);
        written = WritePictureFile(bitmap.Handle(), fileName, quality);
    });
    return written;
}

void cGDIP::ShowUnknownFormat(const QString &extension)
{
    dialogs().message(ErrorBoxText(QLatin1Char('(') + extension + QStringLiteral(") ") + Lang(167)),
                      QStringLiteral("Sorry :("), MsgIcon::Error);
}

bool cGDIP::WritePictureFile(const QImage &picture, const QString &fileName, int quality,
                             const picture::WriteOptions &options)
{
    const QString extension = extensionOf(fileName);
    const ImageEncoder *encoder = encoderFor(extension);
    if (!encoder)
        rt::raise(rt::InvalidCall, QStringLiteral("Unknown image format %1").arg(extension));
    const QImage source = picture.format() == QImage::Format_ARGB32_Premultiplied
                              ? picture
                              : picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (source.isNull())
        rt::raise(picture.isNull() ? rt::InvalidCall : rt::OutOfMemory);

    picture::WriteOptions o = options;
    o.quality = extension.left(1).toLower() == QLatin1String("j") ? std::clamp(quality, 0, 100) : 75;

    // The picture goes to a temporary file beside the target and replaces it only
    // when complete, so a failed or cancelled save never spoils an existing file.
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly))
        raiseFileError(fileName);
    bool complete = false;
    try {
        complete = picture::write(source, file, encoder->formatName, o);
    } catch (...) {
        file.cancelWriting();
        throw;
    }
    if (!complete) {
        file.cancelWriting();
        return false;
    }
    // The encoder's last bytes are still in QSaveFile's buffer, and commit() would swap
    // in the file even when they cannot be written (an empty picture on a full disk),
    // so they are flushed and checked first.
    if (!file.flush()) {
        file.cancelWriting();
        rt::raise(rt::DiskFull);
    }
    if (!file.commit()) {
        // Writing went through, so a failure here is the final flush or the swap.
        if (file.error() == QFileDevice::WriteError || file.error() == QFileDevice::ResourceError)
            rt::raise(rt::DiskFull);
        raiseFileError(fileName);
    }
    return true;
}
