// Writing pictures: the encoder choice, every format read back, failures that must
// leave the disk alone, and the GIF writer's row-by-row path.

#include "base/ErrorLog.h"
#include "base/Language.h"
#include "imaging/GifWriter.h"
#include "imaging/cBitmap.h"
#include "imaging/cGDIP.h"
#include "support/TestSupport.h"

#include <QImageWriter>
#include <QtTest>

namespace {

// 16 x 16 in flat 8 x 8 blocks (kind to JPEG), with one transparent and one
// half-transparent pixel in the bottom-right block, and a top-left pixel that differs
// from its block by one step (a GIF must keep both, not merge near colours).
QImage samplePicture()
{
    QImage img(16, 16, QImage::Format_ARGB32);
    const QRgb blocks[4] = {qRgb(200, 30, 40), qRgb(20, 180, 60), qRgb(30, 40, 220), qRgb(250, 250, 250)};
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x)
            img.setPixel(x, y, blocks[(y / 8) * 2 + x / 8]);
    img.setPixel(15, 15, qRgba(0, 0, 0, 0));
    img.setPixel(14, 15, qRgba(255, 0, 0, 128));
    img.setPixel(0, 0, qRgb(201, 31, 41));
    return img;
}

// A smooth ramp with far more colours than a GIF holds.
QImage ramp()
{
    QImage img(64, 64, QImage::Format_ARGB32);
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x)
            img.setPixel(x, y, qRgb(x * 4, y * 4, (x + y) * 2));
    return img;
}

bool saveAs(const QImage &img, const QString &path, int quality = 90)
{
    cBitmap b;
    b.setImage(img);
    return cGDIP().SaveBitmapToFile(b, path, quality);
}

// Largest difference in any channel, alpha included, between two pictures over the area.
int maxDifference(const QImage &a, const QImage &b, QRect area)
{
    if (a.size() != b.size())
        return 999;
    int worst = 0;
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x) {
            const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
            worst = std::max({worst, qAbs(qRed(p) - qRed(q)), qAbs(qGreen(p) - qGreen(q)), qAbs(qBlue(p) - qBlue(q)),
                              qAbs(qAlpha(p) - qAlpha(q))});
        }
    return worst;
}

} // namespace

class TestImageWriting : public QObject {
    Q_OBJECT

    TempAppFolder m_app{false};

private slots:
    void initTestCase() { SetLang(167, DefaultLanguageString(167)); }

    void encoderChoice_data()
    {
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<QString>("extension");
        QTest::addColumn<QString>("format");
        QTest::newRow("jpeg") << "a.jpeg" << "jpeg" << "JPEG";
        QTest::newRow("tif") << "a.tif" << "tif" << "TIFF";
        QTest::newRow("dib") << "a.dib" << "dib" << "BMP";
        QTest::newRow("gif") << "a.Gif" << "Gif" << "GIF";
        QTest::newRow("last dot counts") << "my.track.v2.png" << "png" << "PNG";
        QTest::newRow("unknown") << "a.xyz" << "xyz" << QString();
        QTest::newRow("no dot") << "picture" << "picture" << QString();
        QTest::newRow("dot in folder only") << "/tmp/x.png/picture" << "png/picture" << QString();
    }
    void encoderChoice()
    {
        QFETCH(QString, fileName);
        QFETCH(QString, extension);
        QFETCH(QString, format);
        QCOMPARE(cGDIP::extensionOf(fileName), extension);
        const ImageEncoder *encoder = cGDIP::encoderFor(extension);
        QCOMPARE(encoder ? encoder->formatName : QString(), format);
    }

    // Each picture is saved in a folder of its own and read back. Where nothing may be
    // written, expected is null and error is what is logged, or shown when nothing is.
    void save_data()
    {
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<QImage>("picture");
        QTest::addColumn<QImage>("expected");
        QTest::addColumn<QRect>("judged");
        QTest::addColumn<int>("tolerance");
        QTest::addColumn<QString>("error");
        const QImage sample = samplePicture();
        QImage overBlack = sample, gif = sample;
        overBlack.setPixel(15, 15, qRgb(0, 0, 0));
        overBlack.setPixel(14, 15, qRgb(128, 0, 0));
        gif.setPixel(14, 15, qRgb(255, 0, 0)); // one transparent entry, the rest opaque
        const QRect all = sample.rect();
        const QString none;
        QTest::newRow("png") << "a.png" << sample << sample << all << 0 << none;
        QTest::newRow("bmp") << "a.bmp" << sample << overBlack << all << 0 << none;
        // JPEG smears colour across block edges: judge the middle of one flat block.
        QTest::newRow("jpeg") << "a.jpg" << sample << overBlack << QRect(2, 2, 4, 4) << 12 << none;
        QTest::newRow("gif") << "a.gif" << sample << gif << all << 0 << none;
        QTest::newRow("gif, many colours") << "a.gif" << ramp() << ramp() << ramp().rect() << 12 << none;
        QTest::newRow("tiff") << "a.tif" << sample << sample << all << 1 << none;
        QTest::newRow("unknown format") << "a.xyz" << sample << QImage() << all << 0
                                        << ErrorBoxText("(xyz) Unknown image format. Choose a different one");
        QTest::newRow("no folder, gif") << "missing/a.gif" << sample << QImage() << all << 0
                                        << "76: Path not found in cGDIP.SaveBitmapToFile";
        QTest::newRow("no picture") << "a.png" << QImage() << QImage() << all << 0
                                    << "5: Invalid procedure call or argument in cGDIP.SaveBitmapToFile";
    }
    void save()
    {
        QFETCH(QString, fileName);
        QFETCH(QImage, picture);
        QFETCH(QImage, expected);
        QFETCH(QRect, judged);
        QFETCH(int, tolerance);
        QFETCH(QString, error);
        if (fileName.endsWith(".tif") && !QImageWriter::supportedImageFormats().contains("tiff"))
            QSKIP("Qt's TIFF plugin is not installed");
        ScriptedDialogs dialogs;
        ClearLoggedErrors();
        const QString folder = m_app.file(QTest::currentDataTag());
        QDir().mkpath(folder);
        QCOMPARE(saveAs(picture, folder + "/" + fileName, 95), !expected.isNull());
        const QStringList written = QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
        QCOMPARE(written, expected.isNull() ? QStringList() : QStringList{fileName});
        QCOMPARE(dialogs.messages.size(), error.isEmpty() ? 0 : 1);
        QCOMPARE(LoggedErrors().isEmpty() && !dialogs.messages.isEmpty() ? dialogs.messages[0].text
                                                                          : LoggedErrors().join('\n'),
                 error);
        if (expected.isNull())
            return;
        const QImage back = QImage(folder + "/" + fileName).convertToFormat(QImage::Format_ARGB32);
        const int difference = maxDifference(back, expected, judged);
        QVERIFY2(difference <= tolerance, qPrintable(QString("off by %1").arg(difference)));
    }

    void jpegQuality()
    {
        QVERIFY(saveAs(ramp(), m_app.file("q10.JPG"), 10));
        QVERIFY(saveAs(ramp(), m_app.file("q95.JPG"), 95));
        const qint64 low = QFileInfo(m_app.file("q10.JPG")).size();
        const qint64 high = QFileInfo(m_app.file("q95.JPG")).size();
        QVERIFY2(low * 3 < high * 2, qPrintable(QString("%1 vs %2 bytes").arg(low).arg(high)));
    }

    // rows < 0: begin() must refuse the arguments. A row too many is refused, and finish()
    // succeeds only after every row.
    void gifStreaming_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<int>("colours");
        QTest::addColumn<int>("transparent");
        QTest::addColumn<int>("rows");
        QTest::newRow("two colours") << QSize(5, 3) << 2 << -1 << 3;
        QTest::newRow("three colours, padded table") << QSize(7, 4) << 3 << -1 << 4;
        QTest::newRow("256 with transparency") << QSize(300, 2) << 256 << 255 << 2;
        QTest::newRow("rows missing") << QSize(5, 3) << 2 << -1 << 2;
        QTest::newRow("too many rows") << QSize(5, 3) << 2 << -1 << 4;
        QTest::newRow("257 colours") << QSize(5, 3) << 257 << -1 << -1;
        QTest::newRow("transparent out of table") << QSize(5, 3) << 2 << 2 << -1;
        QTest::newRow("too wide") << QSize(65536, 1) << 2 << -1 << -1;
    }
    void gifStreaming()
    {
        QFETCH(QSize, size);
        QFETCH(int, colours);
        QFETCH(int, transparent);
        QFETCH(int, rows);
        QList<QRgb> palette;
        for (int i = 0; i < colours; ++i)
            palette << qRgb(i, 255 - i, (i * 37) & 255);
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        GifWriter gif(&buffer);
        QCOMPARE(gif.begin(size.width(), size.height(), palette, transparent), rows >= 0);
        QCOMPARE(gif.error(), rows < 0 ? GifWriter::InvalidArgument : GifWriter::NoError);
        if (rows < 0)
            return;
        bool ok = true;
        std::vector<uint8_t> row(size_t(size.width()));
        for (int y = 0; y < rows && ok; ++y) {
            for (int x = 0; x < size.width(); ++x)
                row[size_t(x)] = uint8_t((x + y) % colours);
            ok = gif.writeRow(row.data());
        }
        QCOMPARE(ok, rows <= size.height());
        QCOMPARE(gif.finish(), rows == size.height());
        if (rows != size.height())
            return;
        const QImage back = QImage::fromData(bytes, "GIF").convertToFormat(QImage::Format_ARGB32);
        QCOMPARE(back.size(), size);
        for (int y = 0; y < size.height(); ++y)
            for (int x = 0; x < size.width(); ++x) {
                const int i = (x + y) % colours;
                const QRgb got = back.pixel(x, y);
                if (i == transparent ? qAlpha(got) != 0 : got != palette[i])
                    QFAIL(qPrintable(QString("pixel %1,%2").arg(x).arg(y)));
            }
    }
};

QTEST_MAIN(TestImageWriting)
#include "tst_imagewriting.moc"
