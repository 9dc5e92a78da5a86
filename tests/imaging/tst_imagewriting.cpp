// Writing pictures: the encoder choice, every format read back, failures that must
// leave the disk alone, and the GIF writer on its own.

#include "app/ErrorLog.h"
#include "app/Language.h"
#include "imaging/GifWriter.h"
#include "imaging/cBitmap.h"
#include "imaging/cGDIP.h"
#include "support/TestSupport.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QImageReader>
#include <QImageWriter>
#include <QtTest>

#include <memory>

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

cBitmap bitmapOf(const QImage &img)
{
    cBitmap b;
    b.setImage(img);
    return b;
}

// Largest difference in any channel between two pictures of one size.
int maxDifference(const QImage &a, const QImage &b, bool withAlpha)
{
    int worst = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
            worst = std::max({worst, qAbs(qRed(p) - qRed(q)), qAbs(qGreen(p) - qGreen(q)), qAbs(qBlue(p) - qBlue(q)),
                              withAlpha ? qAbs(qAlpha(p) - qAlpha(q)) : 0});
        }
    return worst;
}

// Accepts a fixed number of bytes, then refuses: a disk that fills up.
class FillingDevice : public QIODevice {
public:
    explicit FillingDevice(qint64 room) : m_room(room) { open(QIODevice::WriteOnly); }
    QByteArray data;

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *d, qint64 n) override
    {
        if (data.size() + n > m_room)
            return -1;
        data.append(d, n);
        return n;
    }

private:
    qint64 m_room;
};

} // namespace

class TestImageWriting : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_app = std::make_unique<TempAppFolder>(false);
        QVERIFY(m_app->isValid());
        SetLang(167, DefaultLanguageString(167));
    }
    void cleanupTestCase() { m_app.reset(); }

    void encoderChoice_data()
    {
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<QString>("extension");
        QTest::addColumn<QString>("format");
        QTest::newRow("JPG") << "a.JPG" << "JPG" << "JPEG";
        QTest::newRow("jpeg") << "a.jpeg" << "jpeg" << "JPEG";
        QTest::newRow("jpe") << "a.jpe" << "jpe" << "JPEG";
        QTest::newRow("jfif") << "a.jfif" << "jfif" << "JPEG";
        QTest::newRow("tif") << "a.tif" << "tif" << "TIFF";
        QTest::newRow("TIFF") << "a.TIFF" << "TIFF" << "TIFF";
        QTest::newRow("png") << "a.png" << "png" << "PNG";
        QTest::newRow("bmp") << "a.bmp" << "bmp" << "BMP";
        QTest::newRow("dib") << "a.dib" << "dib" << "BMP";
        QTest::newRow("gif") << "a.Gif" << "Gif" << "GIF";
        QTest::newRow("last dot counts") << "my.track.v2.png" << "png" << "PNG";
        QTest::newRow("unknown") << "a.xyz" << "xyz" << QString();
        QTest::newRow("no dot") << "picture" << "picture" << QString();
        QTest::newRow("dot at end") << "picture." << "" << QString();
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

    void roundTrip_data()
    {
        QTest::addColumn<QString>("extension");
        QTest::addColumn<bool>("keepsAlpha");
        QTest::addColumn<int>("tolerance");
        QTest::newRow("png") << "png" << true << 0;
        QTest::newRow("bmp") << "bmp" << false << 0;
        QTest::newRow("jpeg") << "jpg" << false << 12;
        QTest::newRow("gif") << "gif" << false << 0;
        QTest::newRow("tiff") << "tif" << true << 1;
    }
    void roundTrip()
    {
        QFETCH(QString, extension);
        QFETCH(bool, keepsAlpha);
        QFETCH(int, tolerance);
        if (extension == "tif" && !QImageWriter::supportedImageFormats().contains("tiff"))
            QSKIP("Qt's TIFF plugin is not installed");
        ClearLoggedErrors();
        const QString folder = m_app->file("out-" + extension);
        const QString path = folder + "/picture." + extension;
        QDir().mkpath(folder);
        cGDIP gdip;
        QVERIFY(gdip.SaveBitmapToFile(bitmapOf(samplePicture()), path, 95));
        QCOMPARE(LoggedErrors(), QStringList());
        QImage back(path);
        QVERIFY(!back.isNull());
        back = back.convertToFormat(QImage::Format_ARGB32);
        QImage want = samplePicture();
        if (extension == "gif") { // one transparent entry, the rest opaque
            want.setPixel(14, 15, qRgb(255, 0, 0));
            QCOMPARE(qAlpha(back.pixel(15, 15)), 0);
            back.setPixel(15, 15, 0);
            want.setPixel(15, 15, 0);
        } else if (!keepsAlpha) { // over black
            want.setPixel(15, 15, qRgb(0, 0, 0));
            want.setPixel(14, 15, qRgb(128, 0, 0));
        }
        if (extension == "jpg") {
            // JPEG smears colour across the block edges; judge the middles of the flat
            // blocks and that the transparent corner came out dark.
            QVERIFY(qRed(back.pixel(15, 15)) < 100 && qGreen(back.pixel(15, 15)) < 100);
        }
        int difference = 0;
        if (extension == "jpg") {
            for (const QPoint middle : {QPoint(3, 3), QPoint(11, 3), QPoint(3, 11)})
                difference = std::max(difference, maxDifference(back.copy(QRect(middle, QSize(2, 2))),
                                                                 want.copy(QRect(middle, QSize(2, 2))), false));
        } else {
            difference = maxDifference(back, want, keepsAlpha);
        }
        QVERIFY2(difference <= tolerance, qPrintable(QString("off by %1").arg(difference)));
        QCOMPARE(QDir(folder).entryList(QDir::Files), QStringList{"picture." + extension});
    }

    void jpegQuality()
    {
        QImage noisy(64, 64, QImage::Format_ARGB32);
        quint32 seed = 12345;
        for (int y = 0; y < 64; ++y)
            for (int x = 0; x < 64; ++x) {
                seed = seed * 1103515245u + 12345u;
                noisy.setPixel(x, y, qRgb(int(seed >> 24), int(seed >> 16) & 255, int(seed >> 8) & 255));
            }
        cGDIP gdip;
        QVERIFY(gdip.SaveBitmapToFile(bitmapOf(noisy), m_app->file("q10.jpg"), 10));
        QVERIFY(gdip.SaveBitmapToFile(bitmapOf(noisy), m_app->file("q95.jpg"), 95));
        const qint64 low = QFileInfo(m_app->file("q10.jpg")).size();
        const qint64 high = QFileInfo(m_app->file("q95.jpg")).size();
        QVERIFY2(low * 2 < high, qPrintable(QString("%1 vs %2 bytes").arg(low).arg(high)));
        // Quality is for JPEG only; PNG ignores it and stays exact.
        QVERIFY(gdip.SaveBitmapToFile(bitmapOf(noisy), m_app->file("q10.png"), 10));
        QCOMPARE(QImage(m_app->file("q10.png")).convertToFormat(QImage::Format_ARGB32), noisy);
    }

    void unknownExtension()
    {
        ScriptedDialogs dialogs;
        ClearLoggedErrors();
        cGDIP gdip;
        const QString path = m_app->file("picture.xyz");
        QVERIFY(!gdip.SaveBitmapToFile(bitmapOf(samplePicture()), path, 90));
        QVERIFY(!QFile::exists(path));
        QCOMPARE(dialogs.messages.size(), 1);
        QCOMPARE(dialogs.messages[0].text, ErrorBoxText("(xyz) Unknown image format. Choose a different one"));
        QCOMPARE(dialogs.messages[0].title, QString("Sorry :("));
        QCOMPARE(dialogs.messages[0].icon, MsgIcon::Error);
        QCOMPARE(LoggedErrors(), QStringList()); // shown, not logged
    }

    void failuresLeaveDiskAlone_data()
    {
        QTest::addColumn<QString>("extension");
        QTest::newRow("png") << "png";
        QTest::newRow("gif") << "gif";
        QTest::newRow("jpeg") << "jpg";
    }
    void failuresLeaveDiskAlone()
    {
        QFETCH(QString, extension);
        ScriptedDialogs dialogs;
        cGDIP gdip;

        ClearLoggedErrors();
        const QString missing = m_app->file("no such folder/picture." + extension);
        QVERIFY(!gdip.SaveBitmapToFile(bitmapOf(samplePicture()), missing, 90));
        QVERIFY(!QFileInfo::exists(m_app->file("no such folder")));
        QCOMPARE(LoggedErrors(), QStringList{"76: Path not found in cGDIP.SaveBitmapToFile"});

        ClearLoggedErrors();
        QVERIFY(!gdip.SaveBitmapToFile(cBitmap(), m_app->file("empty." + extension), 90));
        QVERIFY(!QFile::exists(m_app->file("empty." + extension)));
        QCOMPARE(LoggedErrors().size(), 1);
    }

    // A folder that cannot be written to keeps the file already in it.
    void readOnlyFolderKeepsFile_data() { failuresLeaveDiskAlone_data(); }
    void readOnlyFolderKeepsFile()
    {
        QFETCH(QString, extension);
        ScriptedDialogs dialogs;
        cGDIP gdip;
        const QString folder = m_app->file("locked-" + extension);
        QDir().mkpath(folder);
        const QString existing = WriteFile(folder + "/picture." + extension, "old bytes");
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner);
        QFile probe(folder + "/probe");
        const bool enforced = !probe.open(QIODevice::WriteOnly);
        probe.remove();
        if (enforced) {
            ClearLoggedErrors();
            QVERIFY(!gdip.SaveBitmapToFile(bitmapOf(samplePicture()), existing, 90));
            QCOMPARE(LoggedErrors(), QStringList{"70: Permission denied in cGDIP.SaveBitmapToFile"});
        }
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QCOMPARE(ReadAll(existing), QByteArray("old bytes"));
        QCOMPARE(QDir(folder).entryList(QDir::Files), QStringList{"picture." + extension});
        if (!enforced)
            QSKIP("Folder permissions are not enforced for this user (running as root?)");
    }

    // More colours than a GIF holds: the palette is chosen from the picture.
    void gifManyColours()
    {
        QImage ramp(64, 64, QImage::Format_RGB32);
        for (int y = 0; y < 64; ++y)
            for (int x = 0; x < 64; ++x)
                ramp.setPixel(x, y, qRgb(x * 4, y * 4, (x + y) * 2));
        QByteArray first, second;
        for (QByteArray *out : {&first, &second}) {
            QBuffer buffer(out);
            buffer.open(QIODevice::WriteOnly);
            GifWriter gif(&buffer);
            QVERIFY2(gif.writeImage(ramp), qPrintable(gif.errorString()));
        }
        QCOMPARE(first, second); // the same picture always gives the same file
        const QImage back = QImage::fromData(first, "GIF").convertToFormat(QImage::Format_ARGB32);
        QCOMPARE(back.size(), ramp.size());
        QVERIFY(back.colorCount() == 0);
        const int difference = maxDifference(back, ramp.convertToFormat(QImage::Format_ARGB32), false);
        QVERIFY2(difference <= 12, qPrintable(QString("off by %1").arg(difference)));
    }

    void gifStreaming_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::addColumn<int>("colours");
        QTest::addColumn<int>("transparent");
        QTest::addColumn<int>("rows");
        QTest::addColumn<bool>("begins");
        QTest::addColumn<bool>("finishes");
        QTest::newRow("two colours") << 5 << 3 << 2 << -1 << 3 << true << true;
        QTest::newRow("three colours, padded table") << 7 << 4 << 3 << -1 << 4 << true << true;
        QTest::newRow("256 with transparency") << 300 << 2 << 256 << 255 << 2 << true << true;
        QTest::newRow("rows missing") << 5 << 3 << 2 << -1 << 2 << true << false;
        QTest::newRow("too many rows") << 5 << 3 << 2 << -1 << 4 << true << false;
        QTest::newRow("257 colours") << 5 << 3 << 257 << -1 << 0 << false << false;
        QTest::newRow("transparent out of table") << 5 << 3 << 2 << 2 << 0 << false << false;
        QTest::newRow("too wide") << 65536 << 1 << 2 << -1 << 0 << false << false;
    }
    void gifStreaming()
    {
        QFETCH(int, width);
        QFETCH(int, height);
        QFETCH(int, colours);
        QFETCH(int, transparent);
        QFETCH(int, rows);
        QFETCH(bool, begins);
        QFETCH(bool, finishes);
        QList<QRgb> palette;
        for (int i = 0; i < colours; ++i)
            palette << qRgb(i, 255 - i, (i * 37) & 255);
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        GifWriter gif(&buffer);
        QCOMPARE(gif.begin(width, height, palette, transparent), begins);
        if (!begins) {
            QCOMPARE(gif.error(), GifWriter::InvalidArgument);
            return;
        }
        bool ok = true;
        std::vector<uint8_t> row(static_cast<size_t>(width));
        for (int y = 0; y < rows && ok; ++y) {
            for (int x = 0; x < width; ++x)
                row[size_t(x)] = uint8_t((x + y) % colours);
            ok = gif.writeRow(row.data());
        }
        ok = ok && gif.finish();
        QCOMPARE(ok, finishes);
        if (!finishes)
            return;
        QCOMPARE(gif.rowsWritten(), height);
        const QImage back = QImage::fromData(bytes, "GIF").convertToFormat(QImage::Format_ARGB32);
        QCOMPARE(back.size(), QSize(width, height));
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const int i = (x + y) % colours;
                const QRgb want = i == transparent ? 0u : palette[i];
                if (back.pixel(x, y) != want && !(i == transparent && qAlpha(back.pixel(x, y)) == 0))
                    QFAIL(qPrintable(QString("pixel %1,%2").arg(x).arg(y)));
            }
    }

    void gifWriteFailure()
    {
        FillingDevice device(100);
        GifWriter gif(&device);
        QImage ramp(64, 64, QImage::Format_RGB32);
        for (int y = 0; y < 64; ++y)
            for (int x = 0; x < 64; ++x)
                ramp.setPixel(x, y, qRgb(x * 4, y * 4, 0));
        QVERIFY(!gif.writeImage(ramp));
        QCOMPARE(gif.error(), GifWriter::WriteFailed);
    }

    void fixedPalette()
    {
        const GifPalette p = GifPalette::fixed();
        QCOMPARE(p.colours().size(), 253);
        QCOMPARE(p.transparentIndex(), 252);
        const QRgb pixels[4] = {qRgb(255, 0, 0), qRgb(51, 42, 102), qRgb(60, 45, 95), 0};
        uint8_t indices[4];
        p.map(pixels, 4, indices);
        QCOMPARE(p.colours()[indices[0]], qRgb(255, 0, 0));
        QCOMPARE(p.colours()[indices[1]], qRgb(51, 42, 102)); // on the cube
        QCOMPARE(p.colours()[indices[2]], qRgb(51, 42, 102)); // nearest to it
        QCOMPARE(int(indices[3]), 252);
    }

private:
    std::unique_ptr<TempAppFolder> m_app;
};

QTEST_MAIN(TestImageWriting)
#include "tst_imagewriting.moc"
