#pragma once
// One drawing surface over a bitmap or a paint device, as a thin face on QPainter.

#include "imaging/ColorMatrix.h"

#include <QFont>
#include <QPainter>
#include <memory>

class cBitmap;

enum MatrixOrder : int { MatrixOrderPrepend = 0, MatrixOrderAppend = 1 };

// GDI+ interpolation modes; each maps onto the nearest QPainter hint.
enum InterpolationMode : int {
    InterpolationModeDefault = 0,
    InterpolationModeLowQuality = 1,
    InterpolationModeHighQuality = 2,
    InterpolationModeBilinear = 3,
    InterpolationModeBicubic = 4,
    InterpolationModeNearestNeighbor = 5,
    InterpolationModeHighQualityBilinear = 6,
    InterpolationModeHighQualityBicubic = 7,
};

class cGraphics {
public:
    cGraphics() = default;
    ~cGraphics();
    cGraphics(const cGraphics &) = delete;
    cGraphics &operator=(const cGraphics &) = delete;

    // On a window, widget or any paint device that is being painted (the HDC case).
    bool CreateFromHdc(QPaintDevice *device);
    // On an existing painter that someone else owns (a paint event's); not ended by us.
    bool CreateFromPainter(QPainter *painter);
    // On a bitmap; the bitmap must outlive this graphics.
    bool GetGraphicsContext(cBitmap &bitmap);

    void DrawImageRectI(const cBitmap &image, int x, int y, int width, int height);
    // Draws the source rectangle of image into the destination rectangle, through the
    // colour matrix when one is given.
    void DrawImageRectRectI(const cBitmap &image, int dstX, int dstY, int dstWidth, int dstHeight,
                            int srcX, int srcY, int srcWidth, int srcHeight,
                            const ColorMatrix *attributes = nullptr);
    // Same, with a prepared picture (for callers that cache their tinted variants).
    void DrawImageRectRect(const QImage &image, int dstX, int dstY, int dstWidth, int dstHeight,
                           int srcX, int srcY, int srcWidth, int srcHeight);
    void DrawString(const QString &text, QRgb colour, const QFont &font, int x, int y);
    // An ellipse outline in the rectangle, with a pen of the given ARGB colour and width.
    void DrawEllipseI(QRgb colour, float penWidth, int x, int y, int width, int height);

    QPainter *Handle() const { return m_painter; }
    void ResetTransform();
    void RotateTransform(float angle, MatrixOrder order = MatrixOrderPrepend);
    void SetInterpolationMode(int mode);
    void TranslateTransform(float dx, float dy, MatrixOrder order = MatrixOrderPrepend);

private:
    void release();
    QPainter *m_painter = nullptr;
    std::unique_ptr<QPainter> m_owned;
};
