#include "imaging/cGraphics.h"

#include "imaging/cBitmap.h"

#include <QPen>

cGraphics::~cGraphics()
{
    release();
}

void cGraphics::release()
{
    if (m_owned && m_owned->isActive())
        m_owned->end();
    m_owned.reset();
    m_painter = nullptr;
}

// A new surface starts as a fresh GDI+ graphics does: default (bilinear) interpolation.
bool cGraphics::CreateFromHdc(QPaintDevice *device)
{
    release();
    if (!device)
        return false;
    auto painter = std::make_unique<QPainter>();
    if (!painter->begin(device))
        return false;
    m_owned = std::move(painter);
    m_painter = m_owned.get();
    m_painter->setRenderHint(QPainter::SmoothPixmapTransform);
    return true;
}

bool cGraphics::CreateFromPainter(QPainter *painter)
{
    release();
    if (!painter || !painter->isActive())
        return false;
    m_painter = painter;
    m_painter->setRenderHint(QPainter::SmoothPixmapTransform);
    return true;
}

bool cGraphics::GetGraphicsContext(cBitmap &bitmap)
{
    release();
    QImage &image = bitmap.image();
    if (image.isNull())
        return false;
    if (image.format() != QImage::Format_ARGB32_Premultiplied)
        image.convertTo(QImage::Format_ARGB32_Premultiplied);
    return CreateFromHdc(&image);
}

void cGraphics::DrawImageRectI(const cBitmap &image, int x, int y, int width, int height)
{
    if (!m_painter || image.isNull())
        return;
    m_painter->drawImage(QRect(x, y, width, height), image.Handle());
}

namespace {
// The source rectangle as its own picture. Parts outside the image come out
// transparent, so the stretch is the same whether or not the rectangle fits.
QImage sourcePart(const QImage &image, const QRect &src)
{
    return image.copy(src);
}
} // namespace

void cGraphics::DrawImageRectRectI(const cBitmap &image, int dstX, int dstY, int dstWidth, int dstHeight,
                                   int srcX, int srcY, int srcWidth, int srcHeight,
                                   const ColorMatrix *attributes)
{
    if (!attributes || attributes->isIdentity()) {
        DrawImageRectRect(image.Handle(), dstX, dstY, dstWidth, dstHeight, srcX, srcY, srcWidth, srcHeight);
        return;
    }
    if (!m_painter || image.isNull() || srcWidth <= 0 || srcHeight <= 0)
        return;
    // Only the part that is drawn goes through the matrix: object sheets are large and
    // a call draws one picture from them.
    const QImage part = attributes->applied(sourcePart(image.Handle(), QRect(srcX, srcY, srcWidth, srcHeight)));
    if (part.isNull())
        return;
    m_painter->drawImage(QRect(dstX, dstY, dstWidth, dstHeight), part);
}

void cGraphics::DrawImageRectRect(const QImage &image, int dstX, int dstY, int dstWidth, int dstHeight,
                                  int srcX, int srcY, int srcWidth, int srcHeight)
{
    if (!m_painter || image.isNull() || srcWidth <= 0 || srcHeight <= 0)
        return;
    const QRect dst(dstX, dstY, dstWidth, dstHeight);
    const QRect src(srcX, srcY, srcWidth, srcHeight);
    if (image.rect().contains(src))
        m_painter->drawImage(dst, image, src);
    else
        m_painter->drawImage(dst, sourcePart(image, src));
}

void cGraphics::DrawString(const QString &text, QRgb colour, const QFont &font, int x, int y)
{
    if (!m_painter)
        return;
    m_painter->save();
    m_painter->setPen(QPen(QColor::fromRgba(colour)));
    m_painter->setFont(font);
    // (x, y) is the top-left corner of the text box; the empty rectangle with no
    // clipping lets the text run on to the right and down, one line per line break.
    m_painter->drawText(QRectF(x, y, 0, 0), Qt::AlignLeft | Qt::AlignTop | Qt::TextDontClip, text);
    m_painter->restore();
}

void cGraphics::DrawEllipseI(QRgb colour, float penWidth, int x, int y, int width, int height)
{
    if (!m_painter)
        return;
    m_painter->save();
    m_painter->setRenderHint(QPainter::Antialiasing);
    m_painter->setPen(QPen(QColor::fromRgba(colour), static_cast<qreal>(penWidth)));
    m_painter->setBrush(Qt::NoBrush);
    m_painter->drawEllipse(QRectF(x, y, width, height));
    m_painter->restore();
}

void cGraphics::ResetTransform()
{
    if (m_painter)
        m_painter->resetTransform();
}

// QPainter's own rotate and translate put the new step before the existing transform,
// which is the prepend order; append multiplies on the other side.
void cGraphics::RotateTransform(float angle, MatrixOrder order)
{
    if (!m_painter)
        return;
    if (order == MatrixOrderAppend)
        m_painter->setTransform(m_painter->transform() * QTransform().rotate(static_cast<qreal>(angle)));
    else
        m_painter->rotate(static_cast<qreal>(angle));
}

void cGraphics::TranslateTransform(float dx, float dy, MatrixOrder order)
{
    if (!m_painter)
        return;
    if (order == MatrixOrderAppend)
        m_painter->setTransform(m_painter->transform()
                                * QTransform::fromTranslate(static_cast<qreal>(dx), static_cast<qreal>(dy)));
    else
        m_painter->translate(static_cast<qreal>(dx), static_cast<qreal>(dy));
}

void cGraphics::SetInterpolationMode(int mode)
{
    if (!m_painter || mode < InterpolationModeDefault || mode > InterpolationModeHighQualityBicubic)
        return;
    m_painter->setRenderHint(QPainter::SmoothPixmapTransform, mode != InterpolationModeNearestNeighbor);
}
