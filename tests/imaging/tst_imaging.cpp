// Pictures in memory: colour matrices, alpha reads, turning and loading.

#include "base/ErrorLog.h"
#include "imaging/ColorMatrix.h"
#include "imaging/cBitmap.h"
#include "support/TestSupport.h"

#include <QPainter>
#include <QtTest>

namespace {

ColorMatrix matrixNamed(const QString &name)
{
    if (name == "highlight")
        return highlightAttributes();
    return ColorMatrix::tint(255, 70, 41);
}

// A white w x h picture with a 6 x 6 red block centred on marker (none if it is null).
cBitmap marked(int w, int h, QPoint marker)
{
    QImage img(w, h, QImage::Format_ARGB32);
    img.fill(Qt::white);
    if (!marker.isNull())
        QPainter(&img).fillRect(marker.x() - 3, marker.y() - 3, 6, 6, Qt::red);
    cBitmap b;
    b.setImage(img);
    return b;
}

} // namespace

class TestImaging : public QObject {
    Q_OBJECT

    TempAppFolder m_app{false};

private slots:
    void colourMatrix_data()
    {
        QTest::addColumn<QString>("matrix");
        QTest::addColumn<uint>("in");
        QTest::addColumn<uint>("expected");
        QTest::newRow("highlight adds 0.55") << "highlight" << qRgba(100, 50, 0, 255) << qRgba(240, 190, 140, 255);
        QTest::newRow("highlight clamps") << "highlight" << qRgba(200, 250, 255, 255) << qRgba(255, 255, 255, 255);
        QTest::newRow("tint on grey") << "tint" << qRgba(128, 128, 128, 200) << qRgba(128, 35, 21, 200);
    }
    // One pixel through the formula, then a premultiplied picture, which goes through
    // per-channel tables and must give exactly what the formula gives.
    void colourMatrix()
    {
        QFETCH(QString, matrix);
        QFETCH(uint, in);
        QFETCH(uint, expected);
        const ColorMatrix m = matrixNamed(matrix);
        QCOMPARE(m.apply(in), QRgb(expected));
        QImage img(2, 1, QImage::Format_ARGB32);
        img.setPixel(0, 0, in);
        img.setPixel(1, 0, qRgba(60, 90, 120, 128));
        const QImage src = img.convertToFormat(QImage::Format_ARGB32_Premultiplied), out = m.applied(src);
        for (int x = 0; x < 2; ++x) // both premultiplied
            QCOMPARE(out.pixel(x, 0), qPremultiply(m.apply(qUnpremultiply(src.pixel(x, 0)))));
    }

    // Outside points sit next to opaque pixels in memory: (-1, 1) just after (2, 0) and
    // (3, 0) just before (0, 1), so reading them unchecked gives 255.
    void getPixelAlpha_data()
    {
        QTest::addColumn<QPoint>("at");
        QTest::addColumn<int>("expected");
        QTest::newRow("opaque") << QPoint(0, 1) << 255;
        QTest::newRow("left of") << QPoint(-1, 1) << 0;
        QTest::newRow("right of") << QPoint(3, 0) << 0;
    }
    void getPixelAlpha()
    {
        QFETCH(QPoint, at);
        QFETCH(int, expected);
        const QRgb solid = qRgba(10, 20, 30, 255);
        const QRgb pixels[2][3] = {{solid, 0, solid}, {solid, qRgba(10, 20, 30, 128), 0}};
        cBitmap b;
        QVERIFY(b.CreateFromScan0(3, 2, 12, reinterpret_cast<const uchar *>(pixels)));
        QCOMPARE(int(b.GetPixelAlpha(at.x(), at.y())), expected);
        QCOMPARE(int(cBitmap().GetPixelAlpha(at.x(), at.y())), 0);
    }

    // A 60 x 40 picture turns in a square max(W, H) + 32 wide; positive angles turn
    // counter-clockwise on screen about its middle. Where the red marker must end,
    // relative to that middle.
    void rotate_data()
    {
        QTest::addColumn<int>("angle");
        QTest::addColumn<QPoint>("marker");
        QTest::addColumn<QPointF>("expected");
        QTest::newRow("90 top goes left") << 90 << QPoint(30, 5) << QPointF(-15, 0);
        QTest::newRow("190 is -170") << 190 << QPoint(50, 20) << QPointF(-19.70, 3.47);
        QTest::newRow("-32768") << -32768 << QPoint(50, 20) << QPointF(19.81, 2.78);
    }
    void rotate()
    {
        QFETCH(int, angle);
        QFETCH(QPoint, marker);
        QFETCH(QPointF, expected);
        const int side = 60 + 32;
        cBitmap r;
        r.Rotate(marked(60, 40, marker), int16_t(angle));
        QCOMPARE(QSize(r.Width(), r.Height()), QSize(side, side));
        QCOMPARE(r.GetPixelAlpha(0, 0), uint8_t(0)); // the corners stay clear
        const QPointF at = QPointF(side / 2, side / 2) + expected;
        const QRgb p = r.Handle().pixel(int(std::floor(at.x())), int(std::floor(at.y())));
        QVERIFY2(qRed(p) > 200 && qGreen(p) < 80 && qAlpha(p) == 255, qPrintable(QString::number(p, 16)));
    }

    // 32736 + 32 does not fit in 16 bits.
    void rotateOverflow()
    {
        ScriptedDialogs dialogs;
        ClearLoggedErrors();
        cBitmap src;
        QVERIFY(src.CreateFromScan0(32736, 1));
        cBitmap r = marked(4, 4, {});
        r.Rotate(src, 10);
        QVERIFY(r.isNull());
        QCOMPARE(LoggedErrors(), QStringList{"6: Overflow in cBitmap.Rotate"});
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
        QTest::newRow("truncated png") << png.left(30) << QSize(0, 0);
        QTest::newRow("no file") << QByteArray() << QSize(0, 0);
    }
    void loadFromFile()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QSize, size);
        const QString path = m_app.file("pictures/" + QString(QTest::currentDataTag()) + ".png");
        if (!bytes.isNull())
            WriteFile(path, bytes);
        cBitmap b = marked(2, 2, {}); // a picture loaded before is dropped on failure
        QCOMPARE(b.LoadFromFile(path), !size.isEmpty());
        QCOMPARE(QSize(b.Width(), b.Height()), size);
        QCOMPARE(b.isNull(), size.isEmpty());
    }
};

QTEST_MAIN(TestImaging)
#include "tst_imaging.moc"
