#include "imaging/cBitmap.h"

#include "base/ErrorLog.h"
#include "base/Runtime.h"

#include <QImageReader>
#include <QPainter>
#include <QTransform>

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

// Pictures are read only up to this many megabytes of decoded pixels, so a corrupt or
// hostile file that claims an enormous size fails instead of taking all the memory.
constexpr int kLoadLimitMegabytes = 1024;

// Bytes of a width x height ARGB picture, or -1 when that does not fit in memory at all.
qint64 argbBytes(int width, int height)
{
    if (width <= 0 || height <= 0)
        return -1;
    const qint64 row = qint64(width) * 4;
    if (row > std::numeric_limits<int>::max()) // QImage keeps bytes per line in an int
        return -1;
    if (qint64(height) > std::numeric_limits<qsizetype>::max() / row)
        return -1;
    return row * height;
}

QImage newTransparent(int width, int height)
{
    if (argbBytes(width, height) < 0)
        return QImage();
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    if (!image.isNull())
        image.fill(Qt::transparent);
    return image;
}

} // namespace

void cBitmap::cacheSize()
{
    m_width = m_image.isNull() ? 0 : m_image.width();
    m_height = m_image.isNull() ? 0 : m_image.height();
}

void cBitmap::setImage(const QImage &image)
{
    m_image = image.isNull() ? QImage() : image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    cacheSize();
}

bool cBitmap::CreateFromScan0(int width, int height, int stride, const uchar *scan0)
{
    m_image = QImage();
    cacheSize();
    if (argbBytes(width, height) < 0)
        return false;
    const int rowBytes = width * 4;
    if (scan0 && stride == 0)
        stride = rowBytes;
    // A negative stride is a bottom-up picture: each next row lies before the last.
    if (scan0 && (stride > -rowBytes && stride < rowBytes))
        return false;

    if (!scan0) {
        m_image = newTransparent(width, height);
    } else {
        QImage image(width, height, QImage::Format_ARGB32);
        if (image.isNull())
            return false;
        for (int y = 0; y < height; ++y)
            std::memcpy(image.scanLine(y), scan0 + qptrdiff(y) * stride, size_t(rowBytes));
        image.convertTo(QImage::Format_ARGB32_Premultiplied);
        m_image = std::move(image);
    }
    cacheSize();
    return !m_image.isNull();
}

// The built-in pictures live in the model library; a static library's resources must be
// registered by hand before first use.
void InitVarnoResources()
{
    static const bool done = [] {
        Q_INIT_RESOURCE(varno);
        return true;
    }();
    (void)done;
}

bool cBitmap::CreateFromResource(int resourceId)
{
    InitVarnoResources();
    setImage(QImage(QStringLiteral(":/custom/%1").arg(resourceId)));
    return !m_image.isNull();
}

bool cBitmap::CreateAsCopy(const cBitmap &source, int width, int height)
{
    m_image = newTransparent(width, height);
    cacheSize();
    if (m_image.isNull())
        return false;
    if (!source.m_image.isNull()) {
        QPainter painter(&m_image);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(QRect(0, 0, width, height), source.m_image);
    }
    return true;
}

bool cBitmap::LoadFromFile(const QString &fileName)
{
    m_image = QImage();
    cacheSize();

    QImageReader reader(fileName);
    reader.setAllocationLimit(kLoadLimitMegabytes);
    if (!reader.canRead())
        return false;
    // Check the size the header declares before anything is decoded; not every
    // format's reader honours the allocation limit by itself.
    const QSize declared = reader.size();
    if (declared.isValid()) {
        const qint64 bytes = argbBytes(declared.width(), declared.height());
        if (bytes < 0 || bytes > qint64(kLoadLimitMegabytes) * 1024 * 1024)
            return false;
    }
    QImage image;
    if (!reader.read(&image) || image.isNull())
        return false;
    setImage(image);
    return !m_image.isNull();
}

uint8_t cBitmap::GetPixelAlpha(int x, int y) const
{
    if (m_image.isNull() || x < 0 || y < 0 || x >= m_image.width() || y >= m_image.height())
        return 0;
    if (m_image.format() == QImage::Format_ARGB32_Premultiplied || m_image.format() == QImage::Format_ARGB32)
        return static_cast<uint8_t>(qAlpha(reinterpret_cast<const QRgb *>(m_image.constScanLine(y))[x]));
    return static_cast<uint8_t>(qAlpha(m_image.pixel(x, y)));
}

void cBitmap::RotateFlip(RotateFlipType type)
{
    if (m_image.isNull())
        return;
    // Turns are clockwise on screen; a flip X (left-right mirror) follows the turn.
    auto turned = [this](int degrees) { return m_image.transformed(QTransform().rotate(degrees)); };
    switch (type) {
    case RotateNoneFlipNone: break;
    case Rotate90FlipNone: m_image = turned(90); break;
    case Rotate180FlipNone: m_image = std::move(m_image).mirrored(true, true); break;
    case Rotate270FlipNone: m_image = turned(270); break;
    case RotateNoneFlipX: m_image = std::move(m_image).mirrored(true, false); break;
    case Rotate90FlipX: m_image = turned(90).mirrored(true, false); break;
    case RotateNoneFlipY: m_image = std::move(m_image).mirrored(false, true); break;
    case Rotate270FlipX: m_image = turned(270).mirrored(true, false); break;
    }
    if (m_image.format() != QImage::Format_ARGB32_Premultiplied)
        m_image.convertTo(QImage::Format_ARGB32_Premultiplied);
    // The cached size stays as it was, even after a quarter turn.
}

void cBitmap::Rotate(const cBitmap &source, int16_t angle)
{
    guarded(QStringLiteral("cBitmap.Rotate"), [&] {
        m_image = QImage();

        const int w = source.Width();
        const int h = source.Height();
        const int side = rt::add16(std::max(w, h), 32);

        int a = angle;
        if (angle < -180)
            a = angle + 360;
        if (angle > 180)
            a = angle - 360;

        QImage square = newTransparent(side, side);
        if (square.isNull())
            rt::raise(rt::OutOfMemory);
        {
            QPainter painter(&square);
            painter.setRenderHint(QPainter::SmoothPixmapTransform);
            painter.translate(side / 2, side / 2);
            painter.rotate(-a - 180);
            // The picture goes in mirrored on both axes, which with the extra half turn
            // above leaves a plain turn by -a about the middle of the square.
            painter.scale(-1, -1);
            if (!source.m_image.isNull())
                painter.drawImage(QRect(-(w / 2), -(h / 2), w, h), source.m_image);
        }
        m_image = std::move(square);
        m_width = side;
        m_height = side;
    });
}
