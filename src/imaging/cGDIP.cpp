#include "imaging/cGDIP.h"

#include "app/ErrorLog.h"
#include "app/Language.h"
#include "core/Dialogs.h"
#include "core/Runtime.h"
#include "imaging/GifWriter.h"
#include "imaging/cBitmap.h"

#include <QDir>
#include <QFileInfo>
#include <QImageWriter>
#include <QSaveFile>

#include <algorithm>

namespace {

// Picture with alpha dropped over black: the premultiplied colour channels are exactly
// the colour over black, so only the alpha byte changes.
QImage overBlack(const QImage &premultiplied)
{
    QImage out(premultiplied.size(), QImage::Format_RGB32);
    if (out.isNull())
        return out;
    const int w = premultiplied.width();
    for (int y = 0; y < premultiplied.height(); ++y) {
        const QRgb *s = reinterpret_cast<const QRgb *>(premultiplied.constScanLine(y));
        QRgb *d = reinterpret_cast<QRgb *>(out.scanLine(y));
        for (int x = 0; x < w; ++x)
            d[x] = s[x] | 0xff000000u;
    }
    return out;
}

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
        dialogs().message(ErrorBoxText(QLatin1Char('(') + extension + QStringLiteral(") ") + Lang(167)),
                          QStringLiteral("Sorry :("), MsgIcon::Error);
        return false;
    }

    bool written = false;
    guarded(QStringLiteral("cGDIP.SaveBitmapToFile"), [&] {
        if (bitmap.isNull())
            rt::raise(rt::InvalidCall);
        const QString format = encoder->formatName.toLower();
        const bool isGif = format == QLatin1String("gif");
        if (!isGif && !QImageWriter::supportedImageFormats().contains(format.toLatin1()))
            rt::raise(rt::DeviceUnavailable, QStringLiteral("No writer for %1 pictures is installed").arg(encoder->formatName));

        // The picture goes to a temporary file beside the target and replaces it only
        // when complete, so a failed save never spoils an existing file.
        QSaveFile file(fileName);
        if (!file.open(QIODevice::WriteOnly))
            raiseFileError(fileName);

        const QImage &image = bitmap.Handle();
        bool ok = false;
        if (isGif) {
            GifWriter gif(&file);
            ok = gif.writeImage(image);
            if (!ok) {
                file.cancelWriting();
                switch (gif.error()) {
                case GifWriter::OutOfMemory: rt::raise(rt::OutOfMemory);
                case GifWriter::WriteFailed: rt::raise(rt::DiskFull);
                default: rt::raise(rt::DeviceIOError, gif.errorString());
                }
            }
        } else {
            QImage out;
            if (format == QLatin1String("jpeg") || format == QLatin1String("bmp"))
                out = overBlack(image);
            else
                out = image.convertToFormat(QImage::Format_ARGB32);
            if (out.isNull()) {
                file.cancelWriting();
                rt::raise(rt::OutOfMemory);
            }
            QImageWriter writer(&file, format.toLatin1());
            if (extension.left(1).toLower() == QLatin1String("j"))
                writer.setQuality(std::clamp(quality, 0, 100));
            ok = writer.write(out);
            if (!ok) {
                const auto error = writer.error();
                file.cancelWriting();
                if (error == QImageWriter::DeviceError)
                    rt::raise(rt::DiskFull);
                rt::raise(rt::DeviceIOError, writer.errorString());
            }
        }
        // The writer's last bytes are still in QSaveFile's buffer, and commit() would
        // swap in the file even when they cannot be written (an empty picture on a full
        // disk), so they are flushed and checked first.
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
        written = true;
    });
    return written;
}
