// The committed pictures must be exactly what varno-artgen draws, and they must keep the
// properties the editor relies on: greys for tinted objects and the background sizes its
// coordinate maps use.

#include "support/TestSupport.h"

#include <QtTest>

class TestArtwork : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY2(!m_source.isEmpty(), "VARNO_SOURCE_DIR is not set");
        QVERIFY(m_out.isValid());
        const QString program = QCoreApplication::applicationDirPath() + "/varno-artgen";
        QProcess generator;
        generator.start(QFileInfo::exists(program) ? program : program + ".exe", {m_out.path()});
        QVERIFY2(generator.waitForFinished(120000) && generator.exitStatus() == QProcess::NormalExit
                     && generator.exitCode() == 0,
                 qPrintable("varno-artgen failed: " + generator.errorString() + generator.readAllStandardError()));
        QDirIterator it(m_out.path(), {"*.png"}, QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext())
            m_generated << QDir(m_out.path()).relativeFilePath(it.next());
        QVERIFY(m_generated.size() >= 39 + 4 + 18);
    }

    void generatedMatchesCommitted_data()
    {
        QTest::addColumn<QString>("relative");
        for (const QString &relative : m_generated)
            QTest::newRow(qPrintable(relative)) << relative;
    }
    // Compared by decoded pixels, not bytes, so a different zlib does not matter, and
    // within what another processor rounds differently.
    void generatedMatchesCommitted()
    {
#ifdef Q_OS_WIN
        QSKIP("The committed pictures are drawn by the Linux build; Qt for Windows anti-aliases some edges "
              "differently");
#endif
        QFETCH(QString, relative);
        const QImage old = committed(relative);
        QVERIFY2(!old.isNull(), "not committed; run varno-artgen on the source tree");
        const QString difference = PictureDifference(old, QImage(m_out.filePath(relative)));
        QVERIFY2(difference.isEmpty(), qPrintable(difference + "; run varno-artgen on the source tree"));
    }

    // That tolerance forgives a step or two on a few pixels and nothing a person would see.
    void comparisonTolerance_data()
    {
        QTest::addColumn<QImage>("changed");
        QTest::addColumn<bool>("same");
        const QImage base = committed("objects/ramp.png").convertToFormat(QImage::Format_ARGB32_Premultiplied);
        auto nudged = [&](int every, int step) { // blue moved by step on every n-th pixel, the middle one included
            QImage img = base;
            for (int i = img.width() * img.height() / 2 % every; i < img.width() * img.height(); i += every) {
                const QRgb p = img.pixel(i % img.width(), i / img.width());
                const int blue = qBlue(p) >= step ? qBlue(p) - step : qBlue(p) + step;
                img.setPixel(i % img.width(), i / img.width(), qRgba(qRed(p), qGreen(p), blue, qAlpha(p)));
            }
            return img;
        };
        QImage dot = base;
        dot.setPixel(base.width() / 2, base.height() / 2, qRgb(0, 0, 255));
        QTest::newRow("2/255 on 1 pixel in 60") << nudged(60, 2) << true;
        QTest::newRow("3/255 on the middle pixel") << nudged(1 << 30, 3) << false;
        QTest::newRow("1/255 on every pixel") << nudged(1, 1) << false;
        QTest::newRow("moved one pixel right") << base.copy(-1, 0, base.width(), base.height()) << false;
        QTest::newRow("one pixel of a new colour") << dot << false;
        QTest::newRow("one column wider") << base.copy(0, 0, base.width() + 1, base.height()) << false;
    }
    void comparisonTolerance()
    {
        QFETCH(QImage, changed);
        QFETCH(bool, same);
        const QString difference = PictureDifference(committed("objects/ramp.png"), changed);
        QVERIFY2(difference.isEmpty() == same, qPrintable(difference));
    }

    // The objects the editor tints have no colour of their own: tinting multiplies the
    // colour in.
    void tintedObjectsAreGrey_data()
    {
        QTest::addColumn<QString>("name");
        for (const char *name : {"cone", "cone pointer", "post color", "barrier", "line"})
            QTest::newRow(name) << QString(name);
    }
    void tintedObjectsAreGrey()
    {
        QFETCH(QString, name);
        const QImage image = committed("objects/" + name + ".png");
        QVERIFY2(!image.isNull(), qPrintable("missing objects/" + name + ".png"));
        int maxChroma = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) {
                const QRgb c = image.pixel(x, y);
                if (qAlpha(c) > 0)
                    maxChroma = std::max(maxChroma, std::max({qRed(c), qGreen(c), qBlue(c)})
                                                        - std::min({qRed(c), qGreen(c), qBlue(c)}));
            }
        QVERIFY2(maxChroma <= 6, qPrintable(QString("coloured pixel, chroma %1").arg(maxChroma)));
    }

    // The sizes the coordinate maps are drawn for.
    void backgrounds()
    {
        const QList<std::pair<QString, QSize>> sizes{
            {"AU1", {1630, 2940}}, {"AU2", {1050, 1050}}, {"AU34", {580, 6260}}, {"BL3", {1220, 1970}}};
        for (const auto &[name, size] : sizes)
            QCOMPARE(committed("backgrounds/" + name + ".png").size(), size);
    }

private:
    QImage committed(const QString &relative) const
    {
        const QImage image(m_source + "/" + relative);
        return image.isNull() ? image : image.convertToFormat(QImage::Format_ARGB32);
    }

    const QString m_source = qEnvironmentVariable("VARNO_SOURCE_DIR");
    QTemporaryDir m_out;
    QStringList m_generated; // relative paths of every PNG the generator wrote
};

QTEST_GUILESS_MAIN(TestArtwork)
#include "tst_artwork.moc"
