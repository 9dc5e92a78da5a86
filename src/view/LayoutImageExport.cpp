#include "view/LayoutImageExport.h"

#include "base/ErrorLog.h"
#include "core/LayoutDocument.h"
#include "imaging/cGDIP.h"
#include "imaging/cGraphics.h"

#include <QFile>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <limits>
#include <mutex>
#include <thread>
#include <vector>

#ifdef Q_OS_LINUX
#include <sys/mman.h>
#endif

namespace {

const QString kWhere = QStringLiteral("frmLayout.LayoutSaveImageFile");
const QString kWriterWhere = QStringLiteral("cGDIP.SaveBitmapToFile");

// Rows per band: about a million pixels, so each band is a few milliseconds of work
// and Cancel is heard at once, yet there are few enough bands that their set-up is lost
// in the drawing.
int bandRows(int width)
{
    return std::clamp(int((1 << 20) / std::max(width, 1)), 16, 4096);
}

// An object with where it lands in the picture and the rows it may touch.
struct PlacedObject {
    varnoObject *object;
    int x, y;
    int top, bottom; // inclusive, with room for pens and rounding
};

#ifdef Q_OS_LINUX
// What the system says it can still give without swapping, or -1 when it does not say.
// Linux promises memory it may not have, and a picture that does not fit would end in
// the process being killed half-way instead of a message.
qint64 availableBytes()
{
    QFile info(QStringLiteral("/proc/meminfo"));
    if (!info.open(QIODevice::ReadOnly))
        return -1;
    qint64 kilobytes = -1;
    for (const QByteArray &line : info.readAll().split('\n'))
        if (line.startsWith("MemAvailable:") || line.startsWith("SwapFree:")) {
            const qint64 k = line.mid(line.indexOf(':') + 1).trimmed().split(' ').value(0).toLongLong();
            kilobytes = std::max<qint64>(kilobytes, 0) + k;
        }
    return kilobytes < 0 ? -1 : kilobytes * 1024;
}

struct Mapping {
    void *address;
    size_t length;
};

void unmapPicture(void *info)
{
    auto *m = static_cast<Mapping *>(info);
    munmap(m->address, m->length);
    delete m;
}
#endif

// The export's one full-size picture, uninitialised (the background covers it all).
// On Linux it is mapped in huge pages where the system offers them: a fresh picture of
// a few hundred megabytes otherwise spends as long taking its pages as being drawn.
QImage newPicture(int width, int height, qint64 bytes)
{
#ifdef Q_OS_LINUX
    const qint64 available = availableBytes();
    if (available >= 0 && bytes > available)
        return QImage();
    void *address = mmap(nullptr, size_t(bytes), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (address == MAP_FAILED)
        return QImage();
#ifdef MADV_HUGEPAGE
    madvise(address, size_t(bytes), MADV_HUGEPAGE);
#endif
    auto *mapping = new Mapping{address, size_t(bytes)};
    QImage picture(static_cast<uchar *>(address), width, height, qsizetype(width) * 4,
                   QImage::Format_ARGB32_Premultiplied, unmapPicture, mapping);
    if (picture.isNull())
        unmapPicture(mapping);
    return picture;
#else
    Q_UNUSED(bytes);
    return QImage(width, height, QImage::Format_ARGB32_Premultiplied);
#endif
}

} // namespace

ExportScene::ExportScene(const LayoutDocument &doc, const cBitmap &picture) : background(picture)
{
    objects.reserve(size_t(doc.Objects().Count()));
    for (const varnoObject &o : doc.Objects()) {
        objects.push_back(o.clone());
        objects.back()->setSelected(false);
    }
}

ExportScene::~ExportScene() = default;

qint64 ExportPictureBytes(int width, int height)
{
    if (width <= 0 || height <= 0)
        return -1;
    const qint64 row = qint64(width) * 4;
    if (row > std::numeric_limits<int>::max())
        return -1;
    if (qint64(height) > std::numeric_limits<qsizetype>::max() / row)
        return -1;
    return row * height;
}

bool RenderLayoutPicture(const ExportScene &scene, QImage &picture, const std::function<bool(int)> &bandDone)
{
    const cBitmap &background = scene.background;
    if (picture.isNull() || picture.format() != QImage::Format_ARGB32_Premultiplied || background.isNull()
        || background.Width() <= 0)
        rt::raise(rt::InvalidCall);
    const int width = picture.width();
    const int height = picture.height();
    // The scale follows the width alone, in single precision.
    const float scale = static_cast<float>(width) / static_cast<float>(background.Width());
    const float zoom = 4.0f / scale;

    std::vector<PlacedObject> placed;
    placed.reserve(scene.objects.size());
    for (const std::unique_ptr<varnoObject> &object : scene.objects) {
        varnoObject &o = *object;
        const int x = rt::toInt32(static_cast<double>(static_cast<float>(o.X()) * scale));
        const int y = rt::toInt32(static_cast<double>(static_cast<float>(o.Y()) * scale));
        // Half the largest thing an object draws (its picture or its circle with the pen),
        // generously: a band an object does not reach is simply not asked to draw it.
        const double extent = double(std::max<int>(o.image().Width(), o.ImageSize()) + 32) / zoom / 2.0 + 8.0;
        const double reach = std::min(extent, 1e9);
        placed.push_back({&o, x, y, int(std::max(-1e9, y - reach)), int(std::min(1e9, y + reach))});
    }

    // Straight onto the caller's picture: it is the one full-size picture of the export.
    cGraphics g;
    if (!g.CreateFromHdc(&picture))
        rt::raise(rt::OutOfMemory);
    g.SetInterpolationMode(InterpolationModeHighQualityBicubic);
    QPainter *p = g.Handle();

    const int rows = bandRows(width);
    for (int top = 0; top < height; top += rows) {
        const int bottom = std::min(height, top + rows); // exclusive
        p->setClipRect(QRect(0, top, width, bottom - top));
        // The background replaces whatever the new memory held; objects blend over it.
        p->setCompositionMode(QPainter::CompositionMode_Source);
        g.DrawImageRectI(background, 0, 0, width, height);
        p->setCompositionMode(QPainter::CompositionMode_SourceOver);
        for (const PlacedObject &o : placed)
            if (o.bottom >= top && o.top < bottom)
                o.object->Draw(o.x, o.y, g, zoom, nullptr);
        if (bandDone && !bandDone(bottom))
            return false;
    }
    return true;
}

ImageExportResult RenderLayoutImage(const ExportScene &scene, const QString &fileName, int width, int height,
                                    int quality, const ExportProgress &progress)
{
    ImageExportResult result;
    const QString extension = cGDIP::extensionOf(fileName);
    if (!cGDIP::encoderFor(extension)) {
        // Known before any drawing: a picture that cannot be written is not drawn.
        result.status = ImageExportResult::UnknownFormat;
        result.extension = extension;
        return result;
    }
    result.where = kWhere;
    const qint64 bytes = ExportPictureBytes(width, height);
    if (bytes < 0 && (width <= 0 || height <= 0)) {
        result.error = rt::Error(rt::InvalidCall, QStringLiteral("The picture must be at least 1 x 1 pixels"));
        return result;
    }
    result.bytesNeeded = bytes < 0 ? qint64(width) * qint64(height) * 4 : bytes;

    QImage picture;
    try {
        if (bytes >= 0)
            picture = newPicture(width, height, bytes);
    } catch (const std::bad_alloc &) {
        picture = QImage();
    }
    if (picture.isNull()) {
        result.status = ImageExportResult::NoMemory;
        return result;
    }

    // Drawing runs on a thread of its own, band by band, and the writer takes each band
    // as soon as it is final. Progress and Cancel are heard on this thread only.
    std::mutex mutex;
    std::condition_variable bandReady;
    int rowsDrawn = 0;
    bool drawingOver = false;
    std::atomic<bool> stop{false};
    std::optional<rt::Error> drawError;
    double written = 0.0;

    auto report = [&](int drawn) {
        if (!progress)
            return true;
        const double fraction = 0.5 * double(drawn) / double(height) + 0.5 * written;
        if (!progress(std::clamp(fraction, 0.0, 1.0))) {
            stop = true;
            return false;
        }
        return true;
    };

    auto draw = [&] {
        try {
            RenderLayoutPicture(scene, picture, [&](int rows) {
                {
                    std::lock_guard<std::mutex> lock(mutex);
                    rowsDrawn = rows;
                }
                bandReady.notify_all();
                return !stop.load();
            });
        } catch (const rt::Error &e) {
            std::lock_guard<std::mutex> lock(mutex);
            drawError = e;
        } catch (const std::bad_alloc &) {
            std::lock_guard<std::mutex> lock(mutex);
            drawError = rt::Error(rt::OutOfMemory);
        }
        {
            std::lock_guard<std::mutex> lock(mutex);
            drawingOver = true;
        }
        bandReady.notify_all();
    };

    // The writer reads the rows through a read-only view of the same memory: a second
    // QImage handle would make the painter copy the whole picture before drawing.
    const QImage pixels(picture.constBits(), width, height, picture.bytesPerLine(), picture.format());
    picture::WriteOptions options;
    options.rowsReady = [&](int needed) {
        std::unique_lock<std::mutex> lock(mutex);
        while (rowsDrawn < needed && !drawingOver) {
            bandReady.wait_for(lock, std::chrono::milliseconds(100));
            const int drawn = rowsDrawn;
            lock.unlock();
            const bool goOn = report(drawn);
            lock.lock();
            if (!goOn)
                return false;
        }
        return rowsDrawn >= needed && !drawError;
    };
    options.progress = [&](qint64 done, qint64 total) {
        written = total > 0 ? double(done) / double(total) : 1.0;
        int drawn;
        {
            std::lock_guard<std::mutex> lock(mutex);
            drawn = rowsDrawn;
        }
        return report(drawn);
    };

    bool complete = false;
    std::optional<rt::Error> writeError;
    {
        std::thread drawer;
        const bool parallel = std::thread::hardware_concurrency() > 1;
        if (parallel) {
            try {
                drawer = std::thread(draw);
            } catch (const std::system_error &) {
                draw();
            }
        } else {
            draw();
        }
        try {
            complete = cGDIP::WritePictureFile(pixels, fileName, quality, options);
        } catch (const rt::Error &e) {
            writeError = e;
        } catch (const std::bad_alloc &) {
            writeError = rt::Error(rt::OutOfMemory);
        }
        stop = true;
        if (drawer.joinable())
            drawer.join();
    }

    if (drawError) {
        result.error = drawError;
        result.where = kWhere;
        return result;
    }
    if (writeError) {
        result.error = writeError;
        result.where = kWriterWhere;
        return result;
    }
    result.status = complete ? ImageExportResult::Written : ImageExportResult::Cancelled;
    return result;
}
