// Pictures in memory: colour matrices, bitmaps, turning and drawing.

#include "app/ErrorLog.h"
#include "imaging/ColorMatrix.h"
#include "imaging/cBitmap.h"
#include "imaging/cGraphics.h"
#include "support/TestSupport.h"

#include <QBuffer>
#include <QFile>
#include <QFontMetrics>
#include <QtTest>

#include <cmath>
#include <memory>

namespace {

ColorMatrix matrixNamed(const QString &name)
{
    if (name == "highlight")
        return highlightAttributes();
    if (name == "ghost")
        return ghostAttributes();
    if (name == "tint")
        return ColorMatrix::tint(255, 70, 41);
    ColorMatrix swap; // red and blue exchanged: not diagonal, so the general path runs
    swap.set(0, 0, 0);
    swap.set(2, 2, 0);
    swap.set(0, 2, 1);
    swap.set(2, 0, 1);
    return swap;
}

cBitmap solid(int w, int h, QRgb straight)
{
    cBitmap b;
    QImage img(w, h, QImage::Format_ARGB32);
    img.fill(straight);
    b.setImage(img);
    return b;
}

// Centre of the red pixels relative to the centre of the picture.
QPointF redCentroid(const QImage &img, QPointF centre)
{
    double sx = 0, sy = 0, n = 0;
    for (int y = 0; y < img.height(); ++y)
        for (int x = 0; x < img.width(); ++x) {
            const QRgb p = img.pixel(x, y);
            if (qAlpha(p) > 128 && qRed(p) > 128 && qGreen(p) < 100) {
                sx += x + 0.5;
                sy += y + 0.5;
                ++n;
            }
        }
    return n ? QPointF(sx / n, sy / n) - centre : QPointF(1e9, 1e9);
}

// A 60 x 40 white picture with a 10 x 10 red block whose centre is at (x, y).
cBitmap markedSource(int x, int y)
{
    QImage img(60, 40, QImage::Format_ARGB32);
    img.fill(qRgba(255, 255, 255, 255));
    for (int j = y - 5; j < y + 5; ++j)
        for (int i = x - 5; i < x + 5; ++i)
            img.setPixel(i, j, qRgb(255, 0, 0));
    cBitmap b;
    b.setImage(img);
    return b;
}

} // namespace

class TestImaging : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_app = std::make_unique<TempAppFolder>(false);
        QVERIFY(m_app->isValid());
    }
    void cleanupTestCase() { m_app.reset(); }

    void colourMatrix_data()
    {
        QTest::addColumn<QString>("matrix");
        QTest::addColumn<uint>("in");
        QTest::addColumn<uint>("expected");
        QTest::newRow("highlight adds 0.55") << "highlight" << qRgba(100, 50, 0, 255) << qRgba(240, 190, 140, 255);
        QTest::newRow("highlight clamps") << "highlight" << qRgba(200, 250, 255, 255) << qRgba(255, 255, 255, 255);
        QTest::newRow("highlight on grey") << "highlight" << qRgba(100, 100, 100, 255) << qRgba(240, 240, 240, 255);
        QTest::newRow("highlight keeps alpha 0") << "highlight" << qRgba(0, 0, 0, 0) << qRgba(140, 140, 140, 0);
        QTest::newRow("ghost alpha 255") << "ghost" << qRgba(10, 20, 30, 255) << qRgba(10, 20, 30, 140);
        QTest::newRow("ghost alpha 0") << "ghost" << qRgba(10, 20, 30, 0) << qRgba(10, 20, 30, 0);
        QTest::newRow("tint on white") << "tint" << qRgba(255, 255, 255, 255) << qRgba(255, 70, 41, 255);
        QTest::newRow("tint on grey") << "tint" << qRgba(128, 128, 128, 200) << qRgba(128, 35, 21, 200);
        QTest::newRow("general matrix") << "swap" << qRgba(10, 20, 30, 255) << qRgba(30, 20, 10, 255);
    }
    void colourMatrix()
    {
        QFETCH(QString, matrix);
        QFETCH(uint, in);
        QFETCH(uint, expected);
        const ColorMatrix m = matrixNamed(matrix);
        QCOMPARE(m.apply(in), QRgb(expected));
        // Whole pictures arrive premultiplied; opaque results must come back unchanged.
        QImage img(3, 1, QImage::Format_ARGB32);
        img.fill(in);
        const QImage out = m.applied(img);
        QCOMPARE(out.format(), QImage::Format_ARGB32_Premultiplied);
        for (int x = 0; x < 3; ++x)
            QCOMPARE(out.pixel(x, 0), qPremultiply(expected));
    }

    // The per-channel tables must give exactly what the formula gives, on every input form.
    void appliedMatchesFormula_data()
    {
        QTest::addColumn<QString>("matrix");
        QTest::addColumn<int>("format");
        for (const char *m : {"highlight", "ghost", "tint", "swap"}) {
            QTest::addRow("%s straight", m) << m << int(QImage::Format_ARGB32);
            QTest::addRow("%s premultiplied", m) << m << int(QImage::Format_ARGB32_Premultiplied);
            QTest::addRow("%s opaque", m) << m << int(QImage::Format_RGB32);
        }
    }
    void appliedMatchesFormula()
    {
        QFETCH(QString, matrix);
        QFETCH(int, format);
        QImage img(64, 16, QImage::Format_ARGB32);
        for (int y = 0; y < 16; ++y)
            for (int x = 0; x < 64; ++x) // runs of equal pixels, then a change
                img.setPixel(x, y, qRgba((x / 3) * 17 % 256, y * 16, (x * 7 + y) % 256, (x / 2 * 37 + y * 11) % 256));
        const QImage src = img.convertToFormat(QImage::Format(format));
        const ColorMatrix m = matrixNamed(matrix);
        const QImage out = m.applied(src);
        for (int y = 0; y < 16; ++y)
            for (int x = 0; x < 64; ++x) {
                QRgb raw = reinterpret_cast<const QRgb *>(src.constScanLine(y))[x];
                QRgb straight = format == QImage::Format_ARGB32_Premultiplied ? qUnpremultiply(raw)
                                : format == QImage::Format_RGB32             ? (raw | 0xff000000u)
                                                                             : raw;
                const QRgb want = qPremultiply(m.apply(straight));
                const QRgb got = reinterpret_cast<const QRgb *>(out.constScanLine(y))[x];
                if (got != want)
                    QFAIL(qPrintable(QString("pixel %1,%2: %3 instead of %4").arg(x).arg(y).arg(got, 8, 16).arg(want, 8, 16)));
            }
    }

    void createFromScan0_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::addColumn<int>("stride");
        QTest::addColumn<bool>("withPixels");
        QTest::addColumn<bool>("ok");
        QTest::newRow("transparent") << 3 << 2 << 0 << false << true;
        QTest::newRow("copied") << 3 << 2 << 16 << true << true;
        QTest::newRow("bottom-up") << 3 << 2 << -16 << true << true;
        QTest::newRow("stride too short") << 3 << 2 << 8 << true << false;
        QTest::newRow("no width") << 0 << 5 << 0 << false << false;
        QTest::newRow("row bytes overflow") << (1 << 30) << 1 << 0 << false << false;
    }
    void createFromScan0()
    {
        QFETCH(int, width);
        QFETCH(int, height);
        QFETCH(int, stride);
        QFETCH(bool, withPixels);
        QFETCH(bool, ok);
        // Rows of four pixels; a bottom-up picture starts at its last row in memory.
        QRgb data[2][4] = {{qRgba(255, 0, 0, 255), qRgba(0, 255, 0, 128), 0, 9}, {qRgba(0, 0, 255, 255), 0, qRgba(9, 9, 9, 9), 9}};
        const uchar *scan0 = !withPixels ? nullptr
                             : stride < 0 ? reinterpret_cast<const uchar *>(data[1])
                                          : reinterpret_cast<const uchar *>(data[0]);
        cBitmap b = solid(2, 2, qRgb(1, 2, 3));
        QCOMPARE(b.CreateFromScan0(width, height, stride, scan0), ok);
        QCOMPARE(b.isNull(), !ok);
        QCOMPARE(b.Width(), ok ? width : 0);
        QCOMPARE(b.Height(), ok ? height : 0);
        if (!ok)
            return;
        const QImage img = b.Handle().convertToFormat(QImage::Format_ARGB32);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const QRgb want = !withPixels ? 0 : data[stride < 0 ? 1 - y : y][x];
                QCOMPARE(qAlpha(img.pixel(x, y)), qAlpha(want));
                if (qAlpha(want) == 255)
                    QCOMPARE(img.pixel(x, y), want);
            }
    }

    void createFromResource()
    {
        cBitmap b = solid(2, 2, qRgb(1, 2, 3));
        const bool present = QFile::exists(":/custom/100");
        QCOMPARE(b.CreateFromResource(100), present);
        QCOMPARE(b.Width() > 0, present);
        QVERIFY(!b.CreateFromResource(99999));
        QVERIFY(b.isNull());
        QCOMPARE(b.Width(), 0);
    }

    void createAsCopyStretches()
    {
        QImage img(2, 1, QImage::Format_ARGB32);
        img.setPixel(0, 0, qRgb(255, 0, 0));
        img.setPixel(1, 0, qRgb(0, 0, 255));
        cBitmap src;
        src.setImage(img);
        cBitmap copy;
        QVERIFY(copy.CreateAsCopy(src, 40, 10));
        QCOMPARE(copy.Width(), 40);
        QCOMPARE(copy.Height(), 10);
        QCOMPARE(copy.Handle().pixel(1, 5), qRgb(255, 0, 0));
        QCOMPARE(copy.Handle().pixel(38, 5), qRgb(0, 0, 255));
        QVERIFY(!copy.CreateAsCopy(src, 0, 10));
        QVERIFY(copy.isNull());
    }

    void getPixelAlpha_data()
    {
        QTest::addColumn<int>("x");
        QTest::addColumn<int>("y");
        QTest::addColumn<int>("expected");
        QTest::newRow("transparent") << 0 << 0 << 0;
        QTest::newRow("opaque") << 1 << 0 << 255;
        QTest::newRow("half") << 2 << 1 << 128;
        QTest::newRow("left of") << -1 << 0 << 0;
        QTest::newRow("right of") << 3 << 0 << 0;
        QTest::newRow("below") << 1 << 2 << 0;
    }
    void getPixelAlpha()
    {
        QFETCH(int, x);
        QFETCH(int, y);
        QFETCH(int, expected);
        QImage img(3, 2, QImage::Format_ARGB32);
        img.fill(0);
        img.setPixel(1, 0, qRgba(10, 20, 30, 255));
        img.setPixel(2, 1, qRgba(10, 20, 30, 128));
        cBitmap b;
        b.setImage(img);
        QCOMPARE(int(b.GetPixelAlpha(x, y)), expected);
        QCOMPARE(int(cBitmap().GetPixelAlpha(x, y)), 0);
    }

    // a b c / d e f turned and flipped; rows separated by "/".
    void rotateFlip_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("expected");
        QTest::newRow("none") << int(RotateNoneFlipNone) << "abc/def";
        QTest::newRow("90 clockwise") << int(Rotate90FlipNone) << "da/eb/fc";
        QTest::newRow("180") << int(Rotate180FlipNone) << "fed/cba";
        QTest::newRow("270") << int(Rotate270FlipNone) << "cf/be/ad";
        QTest::newRow("mirror left-right") << int(RotateNoneFlipX) << "cba/fed";
        QTest::newRow("90 then mirror") << int(Rotate90FlipX) << "ad/be/cf";
        QTest::newRow("upside down") << int(RotateNoneFlipY) << "def/abc";
        QTest::newRow("270 then mirror") << int(Rotate270FlipX) << "fc/eb/da";
    }
    void rotateFlip()
    {
        QFETCH(int, type);
        QFETCH(QString, expected);
        QImage img(3, 2, QImage::Format_ARGB32);
        for (int i = 0; i < 6; ++i)
            img.setPixel(i % 3, i / 3, qRgb('a' + i, 0, 0));
        cBitmap b;
        b.setImage(img);
        b.RotateFlip(RotateFlipType(type));
        QStringList rows;
        for (int y = 0; y < b.Handle().height(); ++y) {
            QString row;
            for (int x = 0; x < b.Handle().width(); ++x)
                row += QChar(qRed(b.Handle().pixel(x, y)));
            rows << row;
        }
        QCOMPARE(rows.join('/'), expected);
        QCOMPARE(b.Handle().format(), QImage::Format_ARGB32_Premultiplied);
        QCOMPARE(b.Width(), 3); // not refreshed, even after a quarter turn
        QCOMPARE(b.Height(), 2);
    }

    void rotateSize_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::addColumn<int>("angle");
        QTest::addColumn<int>("side");
        QTest::newRow("square 45") << 100 << 100 << 45 << 132;
        QTest::newRow("tall") << 10 << 300 << 0 << 332;
        QTest::newRow("wide 90") << 301 << 7 << 90 << 333;
        QTest::newRow("small") << 3 << 2 << -135 << 35;
    }
    void rotateSize()
    {
        QFETCH(int, width);
        QFETCH(int, height);
        QFETCH(int, angle);
        QFETCH(int, side);
        cBitmap r;
        r.Rotate(solid(width, height, qRgb(0, 0, 255)), int16_t(angle));
        QCOMPARE(r.Width(), side);
        QCOMPARE(r.Height(), side);
        QCOMPARE(r.Handle().size(), QSize(side, side));
        QCOMPARE(r.GetPixelAlpha(0, 0), uint8_t(0)); // the corners stay clear
        QCOMPARE(r.GetPixelAlpha(side / 2, side / 2), uint8_t(255));
    }

    // Positive angles turn counter-clockwise on screen, about the middle of the square.
    void rotateDirection_data()
    {
        QTest::addColumn<int>("angle");
        QTest::addColumn<int>("markerX");
        QTest::addColumn<int>("markerY");
        QTest::addColumn<QPointF>("expected"); // red centre relative to the square's middle
        QTest::newRow("0 top-left") << 0 << 10 << 10 << QPointF(-20, -10);
        QTest::newRow("90 top goes left") << 90 << 30 << 5 << QPointF(-15, 0);
        QTest::newRow("-90 top goes right") << -90 << 30 << 5 << QPointF(15, 0);
        QTest::newRow("180") << 180 << 10 << 10 << QPointF(20, 10);
        QTest::newRow("45 right goes up-right") << 45 << 50 << 20 << QPointF(14.14, -14.14);
        QTest::newRow("190 is -170") << 190 << 50 << 20 << QPointF(-19.70, 3.47);
        QTest::newRow("-190 is 170") << -190 << 50 << 20 << QPointF(-19.70, -3.47);
        QTest::newRow("-32768") << -32768 << 50 << 20 << QPointF(19.81, 2.78);
    }
    void rotateDirection()
    {
        QFETCH(int, angle);
        QFETCH(int, markerX);
        QFETCH(int, markerY);
        QFETCH(QPointF, expected);
        cBitmap r;
        r.Rotate(markedSource(markerX, markerY), int16_t(angle));
        QCOMPARE(r.Width(), 92);
        const QPointF got = redCentroid(r.Handle(), QPointF(46, 46));
        QVERIFY2(std::abs(got.x() - expected.x()) < 1.0 && std::abs(got.y() - expected.y()) < 1.0,
                 qPrintable(QString("red centre at %1, %2").arg(got.x()).arg(got.y())));
    }

    void rotateZeroIsCentredCopy()
    {
        const cBitmap src = markedSource(10, 10);
        cBitmap r;
        r.Rotate(src, 0);
        // 60 x 40 in a 92 square about (46, 46): the picture starts at (16, 26).
        QCOMPARE(r.Handle().copy(16, 26, 60, 40), src.Handle());
        QCOMPARE(r.GetPixelAlpha(15, 40), uint8_t(0));
        QCOMPARE(r.GetPixelAlpha(76, 40), uint8_t(0));
    }

    void rotateOverflow_data()
    {
        QTest::addColumn<int>("width");
        QTest::newRow("32736 + 32") << 32736;
        QTest::newRow("32767 + 32") << 32767;
    }
    void rotateOverflow()
    {
        QFETCH(int, width);
        ScriptedDialogs dialogs;
        ClearLoggedErrors();
        cBitmap src;
        QVERIFY(src.CreateFromScan0(width, 1));
        cBitmap r = solid(4, 4, qRgb(1, 1, 1));
        r.Rotate(src, 10);
        QVERIFY(r.isNull());
        QCOMPARE(LoggedErrors(), QStringList{"6: Overflow in cBitmap.Rotate"});
        QCOMPARE(dialogs.messages.size(), 1);
        QCOMPARE(dialogs.messages[0].title, QString("Sorry :("));
        QVERIFY(QFile::exists(m_app->file("Varno.log")));
    }

    void loadFromFile_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QSize>("size");
        QImage img(5, 3, QImage::Format_ARGB32);
        img.fill(qRgba(1, 2, 3, 4));
        QByteArray png;
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        img.save(&buffer, "PNG");
        QTest::newRow("valid png") << png << QSize(5, 3);
        QTest::newRow("garbage") << QByteArray(3000, '\x5a') << QSize(0, 0);
        QTest::newRow("empty") << QByteArray() << QSize(0, 0);
        QTest::newRow("huge png header") << hugePng() << QSize(0, 0);
        QTest::newRow("truncated png") << png.left(30) << QSize(0, 0);
    }
    void loadFromFile()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QSize, size);
        const QString path = WriteFile(m_app->file("pictures/load.png"), bytes);
        cBitmap b = solid(2, 2, qRgb(1, 2, 3));
        QCOMPARE(b.LoadFromFile(path), !size.isEmpty());
        QCOMPARE(QSize(b.Width(), b.Height()), size);
        QCOMPARE(b.isNull(), size.isEmpty());
        QVERIFY(!b.LoadFromFile(m_app->file("pictures/missing.png")));
        QCOMPARE(b.Width(), 0);
    }

    void transformOrder_data()
    {
        QTest::addColumn<int>("rotateOrder");
        QTest::addColumn<int>("translateOrder");
        QTest::addColumn<QPointF>("expected"); // where (1, 0) goes after translate, then rotate
        QTest::newRow("rotate prepended") << int(MatrixOrderPrepend) << int(MatrixOrderPrepend) << QPointF(10, 1);
        QTest::newRow("rotate appended") << int(MatrixOrderAppend) << int(MatrixOrderPrepend) << QPointF(0, 11);
        QTest::newRow("both appended") << int(MatrixOrderAppend) << int(MatrixOrderAppend) << QPointF(0, 11);
        QTest::newRow("translate appended") << int(MatrixOrderPrepend) << int(MatrixOrderAppend) << QPointF(10, 1);
    }
    void transformOrder()
    {
        QFETCH(int, rotateOrder);
        QFETCH(int, translateOrder);
        QFETCH(QPointF, expected);
        cBitmap b = solid(4, 4, 0);
        cGraphics g;
        QVERIFY(g.GetGraphicsContext(b));
        g.TranslateTransform(10, 0, MatrixOrder(translateOrder));
        g.RotateTransform(90, MatrixOrder(rotateOrder));
        const QPointF got = g.Handle()->transform().map(QPointF(1, 0));
        QVERIFY2(std::abs(got.x() - expected.x()) < 1e-9 && std::abs(got.y() - expected.y()) < 1e-9,
                 qPrintable(QString("%1, %2").arg(got.x()).arg(got.y())));
        g.ResetTransform();
        QVERIFY(g.Handle()->transform().isIdentity());
    }

    void drawSourceRectThroughMatrix_data()
    {
        QTest::addColumn<QString>("matrix");
        QTest::addColumn<uint>("expected");
        QTest::newRow("none") << QString() << qRgba(0, 0, 200, 255);
        QTest::newRow("highlight") << "highlight" << qRgba(140, 140, 255, 255);
        QTest::newRow("ghost") << "ghost" << qRgba(0, 0, 200, 140);
    }
    void drawSourceRectThroughMatrix()
    {
        QFETCH(QString, matrix);
        QFETCH(uint, expected);
        QImage sheet(4, 2, QImage::Format_ARGB32);
        sheet.fill(qRgb(200, 0, 0));
        for (int y = 0; y < 2; ++y)
            for (int x = 2; x < 4; ++x)
                sheet.setPixel(x, y, qRgb(0, 0, 200));
        cBitmap src;
        src.setImage(sheet);
        cBitmap dst = solid(6, 6, 0);
        cGraphics g;
        QVERIFY(g.GetGraphicsContext(dst));
        g.SetInterpolationMode(InterpolationModeNearestNeighbor);
        const ColorMatrix m = matrix.isEmpty() ? ColorMatrix() : matrixNamed(matrix);
        g.DrawImageRectRectI(src, 1, 1, 4, 4, 2, 0, 2, 2, matrix.isEmpty() ? nullptr : &m);
        g.Handle()->end();
        const QImage out = dst.Handle().convertToFormat(QImage::Format_ARGB32);
        for (int y = 0; y < 6; ++y)
            for (int x = 0; x < 6; ++x) {
                const bool inside = x >= 1 && x < 5 && y >= 1 && y < 5;
                const QRgb got = out.pixel(x, y);
                if (!inside)
                    QCOMPARE(qAlpha(got), 0);
                else if (qAbs(qRed(got) - qRed(expected)) > 1 || qAbs(qGreen(got) - qGreen(expected)) > 1
                         || qAbs(qBlue(got) - qBlue(expected)) > 1 || qAlpha(got) != qAlpha(expected))
                    QFAIL(qPrintable(QString("%1,%2 is %3").arg(x).arg(y).arg(got, 8, 16)));
            }
    }

    void drawStringTopLeft()
    {
        cBitmap b = solid(200, 80, 0);
        cGraphics g;
        QVERIFY(g.GetGraphicsContext(b));
        QFont font;
        font.setPixelSize(30);
        g.DrawString("HX", qRgb(0, 200, 0), font, 20, 25);
        g.Handle()->end();
        int top = -1, left = -1, right = -1;
        for (int y = 0; y < 80; ++y)
            for (int x = 0; x < 200; ++x)
                if (b.GetPixelAlpha(x, y) > 100) {
                    if (top < 0)
                        top = y;
                    if (left < 0 || x < left)
                        left = x;
                    right = std::max(right, x);
                    QVERIFY(qGreen(b.Handle().pixel(x, y)) > qRed(b.Handle().pixel(x, y)));
                }
        if (top < 0)
            QSKIP("No font is available to draw with");
        const QFontMetrics fm(font);
        // Capitals start below the top of the text box by the ascent less the cap height.
        QVERIFY2(top >= 25 && top <= 25 + fm.ascent() - fm.capHeight() + 2, qPrintable(QString::number(top)));
        QVERIFY2(left >= 20 && left <= 26, qPrintable(QString::number(left)));
        QVERIFY(right > left + 20); // one line, not wrapped
    }

    void drawEllipseOutline()
    {
        cBitmap b = solid(40, 40, 0);
        cGraphics g;
        QVERIFY(g.GetGraphicsContext(b));
        g.DrawEllipseI(qRgb(255, 0, 0), 2, 5, 5, 30, 30);
        g.Handle()->end();
        QCOMPARE(b.GetPixelAlpha(20, 20), uint8_t(0)); // outline only
        QCOMPARE(b.GetPixelAlpha(1, 1), uint8_t(0));
        QVERIFY(b.GetPixelAlpha(5, 20) > 100);
        QVERIFY(b.GetPixelAlpha(20, 34) > 100);
        const QRgb edge = b.Handle().pixel(5, 20);
        QVERIFY(qRed(edge) > 200 && qGreen(edge) == 0 && qBlue(edge) == 0);
    }

    void surfaces()
    {
        cBitmap empty;
        QVERIFY(!cGraphics().GetGraphicsContext(empty));
        QImage target(4, 4, QImage::Format_ARGB32_Premultiplied);
        target.fill(0);
        QPainter painter(&target);
        {
            cGraphics adopted;
            QVERIFY(adopted.CreateFromPainter(&painter));
            adopted.DrawImageRectI(solid(2, 2, qRgb(9, 9, 9)), 0, 0, 4, 4);
        }
        QVERIFY(painter.isActive()); // someone else's painter is left running
        painter.end();
        QCOMPARE(target.pixel(3, 3), qRgb(9, 9, 9));
    }

private:
    static QByteArray hugePng();
    std::unique_ptr<TempAppFolder> m_app;
};

// A PNG whose header claims 100000 x 100000 pixels, with a proper checksum so that the
// reader believes it.
QByteArray TestImaging::hugePng()
{
    auto crc32 = [](const QByteArray &data) {
        quint32 c = 0xffffffffu;
        for (uchar byte : data) {
            c ^= byte;
            for (int k = 0; k < 8; ++k)
                c = (c >> 1) ^ (0xedb88320u & (0u - (c & 1u)));
        }
        return ~c;
    };
    auto be32 = [](quint32 v) {
        const char bytes[4] = {char(v >> 24), char(v >> 16), char(v >> 8), char(v)};
        return QByteArray(bytes, 4);
    };
    auto chunk = [&](const QByteArray &type, const QByteArray &data) {
        return be32(quint32(data.size())) + type + data + be32(crc32(type + data));
    };
    const QByteArray ihdr = be32(100000) + be32(100000) + QByteArray("\x08\x06\x00\x00\x00", 5);
    return QByteArray("\x89PNG\r\n\x1a\n", 8) + chunk("IHDR", ihdr)
           + chunk("IDAT", QByteArray("\x78\x9c\x03\x00\x00\x00\x00\x01", 8)) + chunk("IEND", QByteArray());
}

QTEST_MAIN(TestImaging)
#include "tst_imaging.moc"
