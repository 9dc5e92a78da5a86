#include "imaging/PictureEncoders.h"

#include "base/Runtime.h"
#include "imaging/GifWriter.h"

#include <QIODevice>
#include <QImageWriter>
#include <QtEndian>

#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <new>
#include <vector>

#include <jpeglib.h>
#include <jerror.h>
#include <png.h>

namespace picture {

namespace {

// How often the progress callback is asked, in rows; small enough that Cancel answers
// quickly even for the widest pictures.
constexpr int kRowsPerReport = 64;
// Bytes the encoders collect before they hand them to the device.
constexpr size_t kOutputChunk = 256 * 1024;

enum class Failure { None, NoMemory, DeviceFull, Encoder };

[[noreturn]] void raiseFailure(Failure f, const QString &detail)
{
    switch (f) {
    case Failure::NoMemory: rt::raise(rt::OutOfMemory);
    case Failure::DeviceFull: rt::raise(rt::DiskFull);
    default: rt::raise(rt::DeviceIOError, detail);
    }
}

bool writeAll(QIODevice &device, const char *bytes, qint64 length)
{
    while (length > 0) {
        const qint64 n = device.write(bytes, length);
        if (n <= 0)
            return false;
        bytes += n;
        length -= n;
    }
    return true;
}

// Walks the rows in the order a format stores them, asking for progress every so often.
class RowWalker {
public:
    RowWalker(const WriteOptions &options, qint64 total) : m_options(options), m_total(total) {}
    // Before reading rows [0, rowsNeeded).
    bool need(int rowsNeeded) const { return !m_options.rowsReady || m_options.rowsReady(rowsNeeded); }
    // After a row; false when the caller asked to stop.
    bool advance(qint64 rows = 1)
    {
        const qint64 before = m_done;
        m_done += rows;
        if (!m_options.progress)
            return true;
        if (m_done / kRowsPerReport == before / kRowsPerReport && m_done != m_total)
            return true;
        return m_options.progress(m_done, m_total);
    }
    bool start() const { return !m_options.progress || m_options.progress(0, m_total); }

private:
    const WriteOptions &m_options;
    qint64 m_total;
    qint64 m_done = 0;
};

// --- JPEG -----------------------------------------------------------------------------

struct JpegJob {
    jpeg_compress_struct cinfo;
    jpeg_error_mgr errors;
    jpeg_destination_mgr destination;
    std::jmp_buf jump;
    QIODevice *device = nullptr;
    std::vector<JOCTET> buffer;
    Failure failure = Failure::None;
    char message[JMSG_LENGTH_MAX] = {};
    const QImage *picture = nullptr;
    RowWalker *walker = nullptr;
    bool cancelled = false;
#if !(defined(JCS_EXTENSIONS) && Q_BYTE_ORDER == Q_LITTLE_ENDIAN)
    std::vector<JSAMPLE> rgbRow;
#endif
};

JpegJob *jobOf(j_common_ptr c)
{
    return static_cast<JpegJob *>(c->client_data);
}

void jpegErrorExit(j_common_ptr c)
{
    JpegJob *job = jobOf(c);
    if (job->failure == Failure::None) {
        (*c->err->format_message)(c, job->message);
        job->failure = c->err->msg_code == JERR_OUT_OF_MEMORY ? Failure::NoMemory : Failure::Encoder;
    }
    std::longjmp(job->jump, 1);
}

void jpegSilence(j_common_ptr, int) {}

void jpegInitDestination(j_compress_ptr c)
{
    JpegJob *job = jobOf(reinterpret_cast<j_common_ptr>(c));
    c->dest->next_output_byte = job->buffer.data();
    c->dest->free_in_buffer = job->buffer.size();
}

boolean jpegEmptyBuffer(j_compress_ptr c)
{
    JpegJob *job = jobOf(reinterpret_cast<j_common_ptr>(c));
    if (!writeAll(*job->device, reinterpret_cast<const char *>(job->buffer.data()), qint64(job->buffer.size()))) {
        job->failure = Failure::DeviceFull;
        std::longjmp(job->jump, 1);
    }
    c->dest->next_output_byte = job->buffer.data();
    c->dest->free_in_buffer = job->buffer.size();
    return TRUE;
}

void jpegTermDestination(j_compress_ptr c)
{
    JpegJob *job = jobOf(reinterpret_cast<j_common_ptr>(c));
    const size_t used = job->buffer.size() - c->dest->free_in_buffer;
    if (!writeAll(*job->device, reinterpret_cast<const char *>(job->buffer.data()), qint64(used))) {
        job->failure = Failure::DeviceFull;
        std::longjmp(job->jump, 1);
    }
}

// Only plain data lives in this frame, so the jump out of the library is safe.
void runJpeg(JpegJob *job, int quality)
{
    if (setjmp(job->jump)) {
        jpeg_destroy_compress(&job->cinfo);
        return;
    }
    const QImage &img = *job->picture;
    jpeg_create_compress(&job->cinfo);
    job->cinfo.client_data = job;
    job->cinfo.dest = &job->destination;
    job->destination.init_destination = jpegInitDestination;
    job->destination.empty_output_buffer = jpegEmptyBuffer;
    job->destination.term_destination = jpegTermDestination;
    job->cinfo.image_width = JDIMENSION(img.width());
    job->cinfo.image_height = JDIMENSION(img.height());
#if defined(JCS_EXTENSIONS) && Q_BYTE_ORDER == Q_LITTLE_ENDIAN
    // Premultiplied BGRA bytes are the colour over black: the rows go in untouched.
    job->cinfo.input_components = 4;
    job->cinfo.in_color_space = JCS_EXT_BGRX;
#else
    job->cinfo.input_components = 3;
    job->cinfo.in_color_space = JCS_RGB;
#endif
    jpeg_set_defaults(&job->cinfo);
    jpeg_set_quality(&job->cinfo, std::clamp(quality, 0, 100), TRUE);
    jpeg_start_compress(&job->cinfo, TRUE);
    while (job->cinfo.next_scanline < job->cinfo.image_height) {
        const int y = int(job->cinfo.next_scanline);
        const int rows = std::min(16, img.height() - y);
        if (!job->walker->need(y + rows)) {
            job->cancelled = true;
            jpeg_destroy_compress(&job->cinfo);
            return;
        }
        JSAMPROW pointers[16];
        for (int i = 0; i < rows; ++i) {
#if defined(JCS_EXTENSIONS) && Q_BYTE_ORDER == Q_LITTLE_ENDIAN
            pointers[i] = const_cast<JSAMPROW>(img.constScanLine(y + i));
#else
            JSAMPLE *d = job->rgbRow.data() + size_t(i) * size_t(img.width()) * 3;
            const QRgb *s = reinterpret_cast<const QRgb *>(img.constScanLine(y + i));
            for (int x = 0; x < img.width(); ++x) {
                d[3 * x] = JSAMPLE(qRed(s[x]));
                d[3 * x + 1] = JSAMPLE(qGreen(s[x]));
                d[3 * x + 2] = JSAMPLE(qBlue(s[x]));
            }
            pointers[i] = d;
#endif
        }
        const JDIMENSION written = jpeg_write_scanlines(&job->cinfo, pointers, JDIMENSION(rows));
        if (!job->walker->advance(written)) {
            job->cancelled = true;
            jpeg_destroy_compress(&job->cinfo);
            return;
        }
    }
    jpeg_finish_compress(&job->cinfo);
    jpeg_destroy_compress(&job->cinfo);
}

bool writeJpeg(const QImage &img, QIODevice &device, const WriteOptions &options)
{
    RowWalker walker(options, img.height());
    if (!walker.start())
        return false;
    auto job = std::make_unique<JpegJob>();
    job->cinfo.err = jpeg_std_error(&job->errors);
    job->errors.error_exit = jpegErrorExit;
    job->errors.emit_message = jpegSilence;
    job->cinfo.client_data = job.get();
    job->device = &device;
    job->buffer.resize(kOutputChunk);
    job->picture = &img;
    job->walker = &walker;
#if !(defined(JCS_EXTENSIONS) && Q_BYTE_ORDER == Q_LITTLE_ENDIAN)
    job->rgbRow.resize(size_t(img.width()) * 3 * 16);
#endif
    runJpeg(job.get(), options.quality);
    if (job->failure != Failure::None)
        raiseFailure(job->failure, QStringLiteral("JPEG: ") + QString::fromLocal8Bit(job->message));
    return !job->cancelled;
}

// --- PNG ------------------------------------------------------------------------------

struct PngJob {
    png_structp png = nullptr;
    png_infop info = nullptr;
    QIODevice *device = nullptr;
    std::vector<char> out;
    Failure failure = Failure::None;
    char message[256] = {};
    const QImage *picture = nullptr;
    RowWalker *walker = nullptr;
    bool opaque = true;
    std::vector<QRgb> row; // straight-alpha copy of one row when the picture has alpha
    bool cancelled = false;
};

PngJob *jobOf(png_structp png)
{
    return static_cast<PngJob *>(png_get_io_ptr(png));
}

bool flushPng(PngJob *job)
{
    if (job->out.empty())
        return true;
    const bool ok = writeAll(*job->device, job->out.data(), qint64(job->out.size()));
    job->out.clear();
    return ok;
}

void pngWrite(png_structp png, png_bytep data, png_size_t length)
{
    PngJob *job = jobOf(png);
    job->out.insert(job->out.end(), reinterpret_cast<const char *>(data), reinterpret_cast<const char *>(data) + length);
    if (job->out.size() >= kOutputChunk && !flushPng(job)) {
        job->failure = Failure::DeviceFull;
        png_longjmp(png, 1);
    }
}

void pngFlush(png_structp) {}

void pngError(png_structp png, png_const_charp text)
{
    auto *job = static_cast<PngJob *>(png_get_error_ptr(png));
    if (job->failure == Failure::None) {
        job->failure = std::strstr(text, "memory") ? Failure::NoMemory : Failure::Encoder;
        std::snprintf(job->message, sizeof job->message, "%s", text);
    }
    png_longjmp(png, 1);
}

void pngWarning(png_structp, png_const_charp) {}

void runPng(PngJob *job)
{
    if (setjmp(png_jmpbuf(job->png)))
        return;
    const QImage &img = *job->picture;
    png_set_write_fn(job->png, job, pngWrite, pngFlush);
    png_set_IHDR(job->png, job->info, png_uint_32(img.width()), png_uint_32(img.height()), 8,
                 job->opaque ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(job->png, job->info);
#if Q_BYTE_ORDER == Q_LITTLE_ENDIAN
    png_set_bgr(job->png); // QRgb in memory is B, G, R, A
    if (job->opaque)
        png_set_filler(job->png, 0, PNG_FILLER_AFTER);
#else
    if (job->opaque)
        png_set_filler(job->png, 0, PNG_FILLER_BEFORE);
    else
        png_set_swap_alpha(job->png);
#endif
    for (int y = 0; y < img.height(); ++y) {
        if (!job->walker->need(y + 1)) {
            job->cancelled = true;
            return;
        }
        const QRgb *s = reinterpret_cast<const QRgb *>(img.constScanLine(y));
        if (job->opaque) {
            png_write_row(job->png, reinterpret_cast<png_const_bytep>(s));
        } else {
            for (int x = 0; x < img.width(); ++x)
                job->row[size_t(x)] = qUnpremultiply(s[x]);
            png_write_row(job->png, reinterpret_cast<png_const_bytep>(job->row.data()));
        }
        if (!job->walker->advance()) {
            job->cancelled = true;
            return;
        }
    }
    png_write_end(job->png, job->info);
}

bool writePng(const QImage &img, QIODevice &device, const WriteOptions &options)
{
    // An opaque picture is written without alpha: a quarter less to compress.
    bool opaque = !img.hasAlphaChannel();
    if (!opaque) {
        if (options.rowsReady && !options.rowsReady(img.height()))
            return false;
        opaque = true;
        for (int y = 0; y < img.height() && opaque; ++y) {
            const QRgb *s = reinterpret_cast<const QRgb *>(img.constScanLine(y));
            for (int x = 0; x < img.width(); ++x)
                if (qAlpha(s[x]) != 255) {
                    opaque = false;
                    break;
                }
        }
    }
    RowWalker walker(options, img.height());
    if (!walker.start())
        return false;
    auto job = std::make_unique<PngJob>();
    job->device = &device;
    job->picture = &img;
    job->walker = &walker;
    job->opaque = opaque;
    job->out.reserve(kOutputChunk + 65536);
    if (!opaque)
        job->row.resize(size_t(img.width()));
    job->png = png_create_write_struct(PNG_LIBPNG_VER_STRING, job.get(), pngError, pngWarning);
    if (job->png)
        job->info = png_create_info_struct(job->png);
    if (!job->png || !job->info) {
        png_destroy_write_struct(job->png ? &job->png : nullptr, nullptr);
        rt::raise(rt::OutOfMemory);
    }
    runPng(job.get());
    png_destroy_write_struct(&job->png, &job->info);
    if (job->failure == Failure::None && !job->cancelled && !flushPng(job.get()))
        job->failure = Failure::DeviceFull;
    if (job->failure != Failure::None)
        raiseFailure(job->failure, QStringLiteral("PNG: ") + QString::fromLocal8Bit(job->message));
    return !job->cancelled;
}

// --- BMP ------------------------------------------------------------------------------

// 24 bits per pixel, rows bottom-up, each padded to four bytes: the form every reader
// takes. Alpha is dropped over black.
bool writeBmp(const QImage &img, QIODevice &device, const WriteOptions &options)
{
    const qint64 w = img.width();
    const qint64 h = img.height();
    const qint64 stride = (w * 3 + 3) & ~qint64(3);
    const qint64 imageBytes = stride * h;
    const qint64 fileBytes = 54 + imageBytes;
    if (fileBytes > 0xFFFFFFFFLL)
        rt::raise(rt::DeviceIOError, QStringLiteral("A BMP file cannot hold a picture this large"));

    RowWalker walker(options, h);
    if (!walker.start())
        return false;
    uchar header[54] = {};
    header[0] = 'B';
    header[1] = 'M';
    qToLittleEndian<quint32>(quint32(fileBytes), header + 2);
    qToLittleEndian<quint32>(54, header + 10);
    qToLittleEndian<quint32>(40, header + 14);
    qToLittleEndian<qint32>(qint32(w), header + 18);
    qToLittleEndian<qint32>(qint32(h), header + 22);
    qToLittleEndian<quint16>(1, header + 26);
    qToLittleEndian<quint16>(24, header + 28);
    qToLittleEndian<quint32>(quint32(imageBytes), header + 34);
    qToLittleEndian<qint32>(3780, header + 38); // 96 dpi
    qToLittleEndian<qint32>(3780, header + 42);
    if (!writeAll(device, reinterpret_cast<const char *>(header), 54))
        rt::raise(rt::DiskFull);

    // Several rows per write keep the device calls few.
    const int rowsPerChunk = int(std::max<qint64>(1, qint64(kOutputChunk) / stride));
    std::vector<char> chunk(size_t(stride) * size_t(rowsPerChunk), 0);
    if (!walker.need(int(h))) // the last row is stored first
        return false;
    for (qint64 y = h - 1; y >= 0;) {
        int n = 0;
        for (; n < rowsPerChunk && y >= 0; ++n, --y) {
            const QRgb *s = reinterpret_cast<const QRgb *>(img.constScanLine(int(y)));
            char *d = chunk.data() + size_t(n) * size_t(stride);
            for (qint64 x = 0; x < w; ++x) {
                d[3 * x] = char(qBlue(s[x]));
                d[3 * x + 1] = char(qGreen(s[x]));
                d[3 * x + 2] = char(qRed(s[x]));
            }
        }
        if (!writeAll(device, chunk.data(), stride * n))
            rt::raise(rt::DiskFull);
        if (!walker.advance(n))
            return false;
    }
    return true;
}

// --- GIF ------------------------------------------------------------------------------

// The palette is counted over every row first, then the rows are mapped onto it.
bool writeGif(const QImage &img, QIODevice &device, const WriteOptions &options)
{
    const int h = img.height();
    RowWalker walker(options, qint64(h) * 2);
    if (!walker.start())
        return false;
    if (!walker.need(h))
        return false;
    GifPalette palette;
    for (int y = 0; y < h; ++y) {
        palette.addRow(reinterpret_cast<const QRgb *>(img.constScanLine(y)), img.width());
        if (!walker.advance())
            return false;
    }
    palette.build();
    GifWriter gif(&device);
    std::vector<uint8_t> indices(size_t(img.width()));
    bool ok = gif.begin(img.width(), h, palette.colours(), palette.transparentIndex());
    for (int y = 0; ok && y < h; ++y) {
        palette.map(reinterpret_cast<const QRgb *>(img.constScanLine(y)), img.width(), indices.data());
        ok = gif.writeRow(indices.data());
        if (ok && !walker.advance())
            return false;
    }
    if (ok)
        ok = gif.finish();
    if (!ok) {
        switch (gif.lastError()) {
        case GifWriter::OutOfMemory: rt::raise(rt::OutOfMemory);
        case GifWriter::WriteFailed: rt::raise(rt::DiskFull);
        default: rt::raise(rt::DeviceIOError, gif.errorString());
        }
    }
    return true;
}

// --- TIFF -----------------------------------------------------------------------------

// Qt's TIFF writer converts and writes in strips of a few megabytes, so the picture
// goes to it as it is. It offers no progress, so only the start can be cancelled.
bool writeTiff(const QImage &img, QIODevice &device, const WriteOptions &options)
{
    if (!QImageWriter::supportedImageFormats().contains("tiff"))
        rt::raise(rt::DeviceUnavailable, QStringLiteral("No writer for TIFF pictures is installed"));
    RowWalker walker(options, img.height());
    if (!walker.start())
        return false;
    if (!walker.need(img.height()))
        return false;
    QImageWriter writer(&device, "tiff");
    if (!writer.write(img)) {
        if (writer.error() == QImageWriter::DeviceError)
            rt::raise(rt::DiskFull);
        rt::raise(rt::DeviceIOError, writer.errorString());
    }
    walker.advance(img.height());
    return true;
}

} // namespace

bool isKnownFormat(const QString &formatName)
{
    static const QStringList known{QStringLiteral("PNG"), QStringLiteral("JPEG"), QStringLiteral("BMP"),
                                   QStringLiteral("GIF"), QStringLiteral("TIFF")};
    return known.contains(formatName.toUpper());
}

bool write(const QImage &picture, QIODevice &device, const QString &formatName, const WriteOptions &options)
{
    if (picture.isNull() || picture.format() != QImage::Format_ARGB32_Premultiplied)
        rt::raise(rt::InvalidCall);
    try {
        const QString f = formatName.toUpper();
        if (f == QLatin1String("JPEG"))
            return writeJpeg(picture, device, options);
        if (f == QLatin1String("PNG"))
            return writePng(picture, device, options);
        if (f == QLatin1String("BMP"))
            return writeBmp(picture, device, options);
        if (f == QLatin1String("GIF"))
            return writeGif(picture, device, options);
        if (f == QLatin1String("TIFF"))
            return writeTiff(picture, device, options);
    } catch (const std::bad_alloc &) {
        rt::raise(rt::OutOfMemory);
    }
    rt::raise(rt::InvalidCall, QStringLiteral("No encoder for %1 pictures").arg(formatName));
}

} // namespace picture
