// Writing pictures: the encoder chosen by the name, every format read back, failures that
// must leave the disk alone, and the GIF writer's row-by-row path.

#include "base/ErrorLog.h"
#include "base/Language.h"
#include "imaging/GifWriter.h"
#include "imaging/cBitmap.h"
#include "imaging/cGDIP.h"
#include "support/TestSupport.h"

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

bool saveAs(const QImage &img, const QString &path, int quality = 90)
{
    cBitmap b;
    b.setImage(img);
    return cGDIP().SaveBitmapToFile(b, path, quality);
}

} // namespace

class TestImageWriting : public QObject {
    Q_OBJECT

    TempAppFolder m_app{false};

private slots:
    void initTestCase() { SetLang(167, DefaultLanguageString(167)); }

    // Each picture is saved in a folder of its own and read back. Where nothing may be
    // written, expected is null and error is what is logged, or shown when nothing is.
    void save_data()
    {
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<QImage>("picture");
        QTest::addColumn<QImage>("expected");
        QTest::addColumn<QString>("error");
        const QImage sample = samplePicture();
        QImage overBlack = sample, gif = sample;
        overBlack.setPixel(15, 15, qRgb(0, 0, 0));
        overBlack.setPixel(14, 15, qRgb(128, 0, 0));
        gif.setPixel(14, 15, qRgb(255, 0, 0)); // one transparent entry, the rest opaque
        const QString none;
        QTest::newRow("png") << "a.png" << sample << sample << none;
        QTest::newRow("the last dot counts, in any case") << "my.track.v2.Png" << sample << sample << none;
        QTest::newRow("bmp") << "a.bmp" << sample << overBlack << none;
        QTest::newRow("jpeg") << "a.jpg" << sample << overBlack << none;
        QTest::newRow("gif") << "a.gif" << sample << gif << none;
        QTest::newRow("unknown format") << "a.xyz" << sample << QImage()
                                        << ErrorBoxText("(xyz) Unknown image format. Choose a different one");
        QTest::newRow("no folder, gif") << "missing/a.gif" << sample << QImage()
                                        << "76: Path not found in cGDIP.SaveBitmapToFile";
        QTest::newRow("no picture") << "a.png" << QImage() << QImage()
                                    << "5: Invalid procedure call or argument in cGDIP.SaveBitmapToFile";
    }
    void save()
    {
        QFETCH(QString, fileName);
        QFETCH(QImage, picture);
        QFETCH(QImage, expected);
        QFETCH(QString, error);
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
        if (fileName.endsWith(".jpg")) // lossy, and smeared across block edges: judge one block's middle
            QVERIFY(back.size() == expected.size() && qAbs(qRed(back.pixel(4, 4)) - 200) <= 12);
        else
            QCOMPARE(back, expected);
    }

    // rows < 0: begin() must refuse the arguments. A row too many is refused, and finish()
    // succeeds only after every row.
    void gifStreaming_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<int>("colours");
        QTest::addColumn<int>("transparent");
        QTest::addColumn<int>("rows");
        QTest::newRow("three colours, padded table") << QSize(7, 4) << 3 << -1 << 4;
        QTest::newRow("256 with transparency") << QSize(300, 2) << 256 << 255 << 2;
        QTest::newRow("rows missing") << QSize(5, 3) << 2 << -1 << 2;
        QTest::newRow("257 colours") << QSize(5, 3) << 257 << -1 << -1;
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
        QCOMPARE(gif.lastError(), rows < 0 ? GifWriter::InvalidArgument : GifWriter::NoError);
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
