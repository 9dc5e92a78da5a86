// The committed pictures must be exactly what varno-artgen draws, and they must keep the
// properties the editor relies on: transparent surroundings, greys for tinted objects,
// the real-world scale, the facing, and the background sizes its coordinate maps use.

#include <QDirIterator>
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <QtTest>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr double kPixelsPerMetre = 22.8;

QString sourceDir()
{
    return qEnvironmentVariable("VARNO_SOURCE_DIR");
}

QImage loadArgb(const QString &path)
{
    QImage image(path);
    return image.isNull() ? image : image.convertToFormat(QImage::Format_ARGB32);
}

// Bounding box of every pixel that is not fully transparent.
QRect inkBox(const QImage &image)
{
    int left = image.width(), top = image.height(), right = -1, bottom = -1;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qAlpha(image.pixel(x, y)) > 0) {
                left = std::min(left, x);
                right = std::max(right, x);
                top = std::min(top, y);
                bottom = std::max(bottom, y);
            }
    return right < 0 ? QRect() : QRect(QPoint(left, top), QPoint(right, bottom));
}

QString objectPath(const QString &name)
{
    return sourceDir() + "/objects/" + name + ".png";
}

bool runGenerator(const QString &program, const QString &root)
{
    QProcess generator;
    generator.start(program, {root});
    if (!generator.waitForFinished(120000) || generator.exitStatus() != QProcess::NormalExit) {
        qWarning("varno-artgen did not finish");
        return false;
    }
    if (generator.exitCode() != 0) {
        qWarning("varno-artgen failed: %s", generator.readAllStandardError().constData());
        return false;
    }
    return true;
}

QByteArray fileBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The most common hue, in 10 degree steps, among clearly coloured pixels; -1 if none.
int dominantHue(const QImage &image)
{
    std::array<int, 36> bins{};
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = QColor::fromRgba(image.pixel(x, y));
            if (c.alpha() == 255 && c.hsvSaturationF() > 0.4 && c.valueF() > 0.3)
                ++bins[c.hsvHue() / 10];
        }
    const auto best = std::max_element(bins.begin(), bins.end());
    return *best == 0 ? -1 : int(best - bins.begin()) * 10 + 5;
}

} // namespace

class TestArtwork : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void generatedMatchesCommitted_data();
    void generatedMatchesCommitted();
    void committedPicturesAreAllGenerated();
    void secondRunIsByteIdentical();
    void contactSheetCaptionsMatch();
    void objectPictures_data();
    void objectPictures();
    void realWorldScale_data();
    void realWorldScale();
    void facing_data();
    void facing();
    void colours_data();
    void colours();
    void tintedPicturesAreShaded_data();
    void tintedPicturesAreShaded();
    void linePictureIsAThinBar();
    void backgrounds_data();
    void backgrounds();
    void builtInPictures_data();
    void builtInPictures();
    void toolbarPicturesAreDistinct();
    void dragStripStartLine();

private:
    QString m_program;
    QTemporaryDir m_out;
    QStringList m_generated; // relative paths of every PNG the generator wrote
};

void TestArtwork::initTestCase()
{
    QVERIFY2(!sourceDir().isEmpty(), "VARNO_SOURCE_DIR is not set");
    QVERIFY(m_out.isValid());
    m_program = QCoreApplication::applicationDirPath() + "/varno-artgen";
    if (!QFileInfo::exists(m_program) && QFileInfo::exists(m_program + ".exe"))
        m_program += ".exe";
    QVERIFY2(QFileInfo::exists(m_program), qPrintable("generator not built: " + m_program));
    QVERIFY(runGenerator(m_program, m_out.path()));

    QDirIterator it(m_out.path(), {"*.png"}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        m_generated << QDir(m_out.path()).relativeFilePath(it.next());
    m_generated.sort();
    QVERIFY(m_generated.size() >= 39 + 4 + 18);
}

void TestArtwork::generatedMatchesCommitted_data()
{
    QTest::addColumn<QString>("relative");
    for (const QString &relative : m_generated)
        QTest::newRow(qPrintable(relative)) << relative;
}

// Compared by decoded pixels, not bytes, so a different zlib does not matter.
void TestArtwork::generatedMatchesCommitted()
{
    QFETCH(QString, relative);
    const QImage fresh = loadArgb(m_out.filePath(relative));
    const QImage committed = loadArgb(sourceDir() + "/" + relative);
    QVERIFY2(!committed.isNull(), "not committed; run varno-artgen on the source tree");
    QVERIFY(!fresh.isNull());
    QCOMPARE(committed.size(), fresh.size());
    int differing = 0;
    QPoint first;
    for (int y = 0; y < fresh.height(); ++y)
        for (int x = 0; x < fresh.width(); ++x)
            if (fresh.pixel(x, y) != committed.pixel(x, y) && differing++ == 0)
                first = QPoint(x, y);
    QVERIFY2(differing == 0, qPrintable(QString("%1 pixels differ, first at (%2, %3): committed %4, drawn %5")
                                            .arg(differing)
                                            .arg(first.x())
                                            .arg(first.y())
                                            .arg(committed.pixel(first), 8, 16, QChar('0'))
                                            .arg(fresh.pixel(first), 8, 16, QChar('0'))));
}

// A committed picture the generator no longer draws would silently go stale.
void TestArtwork::committedPicturesAreAllGenerated()
{
    QStringList stale;
    for (const char *folder : {"objects", "backgrounds", "resources"}) {
        QDirIterator it(sourceDir() + "/" + QLatin1String(folder), {"*.png"}, QDir::Files,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString relative = QDir(sourceDir()).relativeFilePath(it.next());
            if (!m_generated.contains(relative))
                stale << relative;
        }
    }
    QVERIFY2(stale.isEmpty(), qPrintable("not drawn by varno-artgen: " + stale.join(", ")));
}

void TestArtwork::objectPictures_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("tinted");
    const QStringList tinted = {"cone", "cone pointer", "post color", "barrier", "line"};
    const QStringList names = {"start",      "line",         "chalk ahead", "chalk ahead2",  "chalk",
                               "chalk2",     "chalk3",       "chalk line",  "cone red",      "cone",
                               "cone red3",  "cone pointer", "cone blue",   "cone yellow",   "cone green",
                               "cone white", "cone1",        "cone2",       "tyres white",   "tyres2 white",
                               "tyres red",  "tyres2 red",   "tyres blue",  "tyres2 blue",   "tyres small",
                               "banner rsc", "banner cromo", "banner ad1",  "banner ad2",    "banner ad3",
                               "bale",       "post",         "post color",  "barrier",       "barrier long",
                               "keep",       "ramp",         "marshall",    "marshall point"};
    QCOMPARE(names.size(), 39);
    for (const QString &name : names)
        QTest::newRow(qPrintable(name)) << name << tinted.contains(name);
}

void TestArtwork::objectPictures()
{
    QFETCH(QString, name);
    QFETCH(bool, tinted);
    const QImage image = loadArgb(objectPath(name));
    QVERIFY2(!image.isNull(), qPrintable("missing " + objectPath(name)));

    // The surroundings are clear: at least one corner is fully transparent.
    const int w = image.width() - 1, h = image.height() - 1;
    const QList<QRgb> corners = {image.pixel(0, 0), image.pixel(w, 0), image.pixel(0, h), image.pixel(w, h)};
    QVERIFY(std::any_of(corners.begin(), corners.end(), [](QRgb c) { return qAlpha(c) == 0; }));

    int opaque = 0;
    int maxChroma = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QRgb c = image.pixel(x, y);
            opaque += qAlpha(c) == 255;
            if (qAlpha(c) > 0)
                maxChroma = std::max(maxChroma, std::max({qRed(c), qGreen(c), qBlue(c)}) -
                                                    std::min({qRed(c), qGreen(c), qBlue(c)}));
        }
    QVERIFY2(opaque >= 10, qPrintable(QString("only %1 opaque pixels").arg(opaque)));
    // Tinting multiplies the colour in, so any colour of our own would skew it.
    if (tinted)
        QVERIFY2(maxChroma <= 6, qPrintable(QString("coloured pixel, chroma %1").arg(maxChroma)));
}

void TestArtwork::realWorldScale_data()
{
    // The object's footprint in metres; the picture is drawn at 22.8 px/m plus a small margin.
    QTest::addColumn<QString>("name");
    QTest::addColumn<double>("widthMetres");
    QTest::addColumn<double>("heightMetres");
    QTest::newRow("cone red") << "cone red" << 0.5 << 0.5;
    QTest::newRow("cone") << "cone" << 0.5 << 0.5;
    QTest::newRow("tyres red") << "tyres red" << 0.65 << 0.65;
    QTest::newRow("tyres2 blue") << "tyres2 blue" << 1.3 << 0.65;
    QTest::newRow("banner rsc") << "banner rsc" << 4.0 << 0.5;
    QTest::newRow("barrier") << "barrier" << 1.6 << 0.6;
    QTest::newRow("barrier long") << "barrier long" << 4.0 << 0.6;
    QTest::newRow("ramp") << "ramp" << 4.0 << 2.5;
    QTest::newRow("start") << "start" << 1.9 << 4.3;
    QTest::newRow("bale") << "bale" << 1.2 << 0.7;
    QTest::newRow("post") << "post" << 0.3 << 0.3;
    QTest::newRow("marshall") << "marshall" << 0.7 << 0.45;
    QTest::newRow("chalk line") << "chalk line" << 4.0 << 0.25;
}

void TestArtwork::realWorldScale()
{
    QFETCH(QString, name);
    QFETCH(double, widthMetres);
    QFETCH(double, heightMetres);
    const QImage image = loadArgb(objectPath(name));
    QVERIFY(!image.isNull());
    const QRect ink = inkBox(image);
    QVERIFY(ink.isValid());
    const double tolerance = 4.0; // pixels: outlines, antialiasing and rounding
    QVERIFY2(std::abs(ink.width() - widthMetres * kPixelsPerMetre) <= tolerance,
             qPrintable(QString("ink width %1 px").arg(ink.width())));
    QVERIFY2(std::abs(ink.height() - heightMetres * kPixelsPerMetre) <= tolerance,
             qPrintable(QString("ink height %1 px").arg(ink.height())));
    // Tightly cropped and centred, so the editor can turn it about the canvas centre.
    QVERIFY(image.width() - ink.width() <= 6 && image.height() - ink.height() <= 6);
    QVERIFY(std::abs(ink.left() - (image.width() - 1 - ink.right())) <= 1);
    QVERIFY(std::abs(ink.top() - (image.height() - 1 - ink.bottom())) <= 1);
}

void TestArtwork::facing_data()
{
    // PointsUp: the widest row is in the top half (an arrow head, not a tail).
    // EntersFromRight: a left-bending arrow starts at the bottom on the right.
    // ReachesLeft: most of the picture's weight lies left of the centre.
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("check");
    QTest::newRow("chalk ahead") << "chalk ahead"
                                 << "PointsUp";
    QTest::newRow("cone pointer") << "cone pointer"
                                  << "PointsUp";
    QTest::newRow("chalk") << "chalk"
                           << "EntersFromRight";
    QTest::newRow("chalk2") << "chalk2"
                            << "EntersFromRight";
    QTest::newRow("chalk3") << "chalk3"
                            << "EntersFromRight";
    QTest::newRow("marshall point") << "marshall point"
                                    << "ReachesLeft";
}

void TestArtwork::facing()
{
    QFETCH(QString, name);
    QFETCH(QString, check);
    const QImage image = loadArgb(objectPath(name));
    QVERIFY(!image.isNull());
    const QRect ink = inkBox(image);
    const double centreX = (image.width() - 1) / 2.0;
    auto rowWidth = [&](int y) {
        int n = 0;
        for (int x = 0; x < image.width(); ++x)
            n += qAlpha(image.pixel(x, y)) > 0;
        return n;
    };
    if (check == "PointsUp") {
        int top = 0, bottom = 0;
        for (int y = 0; y < image.height() / 2; ++y)
            top = std::max(top, rowWidth(y));
        for (int y = (image.height() + 1) / 2; y < image.height(); ++y)
            bottom = std::max(bottom, rowWidth(y));
        QVERIFY2(top > bottom, qPrintable(QString("widest top %1, bottom %2").arg(top).arg(bottom)));
    } else if (check == "EntersFromRight") {
        double sum = 0, count = 0;
        for (int y = ink.bottom() - 2; y <= ink.bottom(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (qAlpha(image.pixel(x, y)) > 0) {
                    sum += x;
                    ++count;
                }
        QVERIFY(count > 0);
        QVERIFY2(sum / count > centreX, qPrintable(QString("tail at x %1").arg(sum / count)));
    } else {
        double sum = 0, weight = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) {
                sum += x * qAlpha(image.pixel(x, y));
                weight += qAlpha(image.pixel(x, y));
            }
        QVERIFY2(sum / weight < centreX - 1, qPrintable(QString("centroid x %1").arg(sum / weight)));
    }
}

void TestArtwork::colours_data()
{
    // Hue ranges in degrees; a range with lo > hi wraps through red.
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("lo");
    QTest::addColumn<int>("hi");
    QTest::newRow("cone red") << "cone red" << 0 << 25;
    QTest::newRow("cone red3") << "cone red3" << 340 << 15;
    QTest::newRow("cone blue") << "cone blue" << 195 << 235;
    QTest::newRow("cone yellow") << "cone yellow" << 38 << 62;
    QTest::newRow("cone green") << "cone green" << 115 << 155;
    QTest::newRow("cone1") << "cone1" << 20 << 40;
    QTest::newRow("cone2") << "cone2" << 40 << 62;
    QTest::newRow("tyres red") << "tyres red" << 340 << 15;
    QTest::newRow("tyres2 red") << "tyres2 red" << 340 << 15;
    QTest::newRow("tyres blue") << "tyres blue" << 200 << 240;
    QTest::newRow("tyres2 blue") << "tyres2 blue" << 200 << 240;
    QTest::newRow("banner rsc") << "banner rsc" << 340 << 15;
    QTest::newRow("banner cromo") << "banner cromo" << 38 << 62;
    QTest::newRow("banner ad1") << "banner ad1" << 200 << 235;
    QTest::newRow("banner ad2") << "banner ad2" << 120 << 160;
    QTest::newRow("banner ad3") << "banner ad3" << 260 << 295;
    QTest::newRow("barrier long") << "barrier long" << 340 << 15;
    QTest::newRow("bale") << "bale" << 30 << 55;
    QTest::newRow("keep") << "keep" << 200 << 235;
    QTest::newRow("marshall") << "marshall" << 15 << 35;
}

// Each coloured object carries the colour its name promises.
void TestArtwork::colours()
{
    QFETCH(QString, name);
    QFETCH(int, lo);
    QFETCH(int, hi);
    const QImage image = loadArgb(objectPath(name));
    QVERIFY(!image.isNull());
    const int hue = dominantHue(image);
    QVERIFY2(hue >= 0, "no clearly coloured pixels");
    const bool inRange = lo <= hi ? (hue >= lo && hue <= hi) : (hue >= lo || hue <= hi);
    QVERIFY2(inRange, qPrintable(QString("dominant hue %1").arg(hue)));
}

void TestArtwork::tintedPicturesAreShaded_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"cone", "cone pointer", "post color", "barrier", "line"})
        QTest::newRow(name) << QString(name);
}

// Greys only, but not one flat grey: the shading is what shapes them once tinted.
void TestArtwork::tintedPicturesAreShaded()
{
    QFETCH(QString, name);
    const QImage image = loadArgb(objectPath(name));
    QVERIFY(!image.isNull());
    QSet<int> levels;
    int white = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QRgb c = image.pixel(x, y);
            if (qAlpha(c) == 255) {
                levels.insert(qRed(c) / 16);
                white += qRed(c) >= 224;
            }
        }
    QVERIFY2(levels.size() >= 3, qPrintable(QString("%1 grey levels").arg(levels.size())));
    // Mostly light, so a tint shows as its own colour rather than a dark shade of it.
    QVERIFY(white > 0);
}

// The editor stretches this bar to a line's length and keeps its height.
void TestArtwork::linePictureIsAThinBar()
{
    const QImage image = loadArgb(objectPath("line"));
    QVERIFY(!image.isNull());
    QVERIFY(image.width() > image.height());
    QVERIFY(image.height() <= 8);
    // Opaque across its whole length, or a stretched line would show gaps.
    const int mid = image.height() / 2;
    for (int x = 0; x < image.width(); ++x)
        QCOMPARE(qAlpha(image.pixel(x, mid)), 255);
}

void TestArtwork::backgrounds_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QSize>("size");
    QTest::newRow("AU1") << "AU1" << QSize(1630, 2940);
    QTest::newRow("AU2") << "AU2" << QSize(1050, 1050);
    QTest::newRow("AU34") << "AU34" << QSize(580, 6260);
    QTest::newRow("BL3") << "BL3" << QSize(1220, 1970);
}

void TestArtwork::backgrounds()
{
    QFETCH(QString, name);
    QFETCH(QSize, size);
    const QImage image = loadArgb(sourceDir() + "/backgrounds/" + name + ".png");
    QVERIFY(!image.isNull());
    QCOMPARE(image.size(), size);
    for (int y = 0; y < image.height(); y += 7)
        for (int x = 0; x < image.width(); x += 7)
            QVERIFY2(qAlpha(image.pixel(x, y)) == 255, "backgrounds are opaque");
}

void TestArtwork::builtInPictures_data()
{
    // Every file the resource list names, with the size the program shows it at.
    QTest::addColumn<QString>("file");
    QTest::addColumn<QSize>("size");
    QFile qrc(sourceDir() + "/resources/varno.qrc");
    QVERIFY(qrc.open(QIODevice::ReadOnly));
    QXmlStreamReader xml(&qrc);
    QStringList aliases;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement || xml.name() != QLatin1String("file"))
            continue;
        const QString alias = xml.attributes().value("alias").toString();
        const QString file = xml.readElementText();
        aliases << alias;
        QSize size(24, 24);
        if (file == "varno.png")
            size = QSize(64, 64);
        else if (file == "varno-256.png")
            size = QSize(256, 256);
        QTest::newRow(qPrintable(alias + " " + file)) << file << size;
    }
    QVERIFY(!xml.hasError());
    QCOMPARE(aliases.size(), 1 + 14 + 2);
    for (int i = 0; i < 14; ++i)
        QVERIFY(aliases.contains(QString("%1.png").arg(i)));
}

void TestArtwork::builtInPictures()
{
    QFETCH(QString, file);
    QFETCH(QSize, size);
    const QImage image = loadArgb(sourceDir() + "/resources/" + file);
    QVERIFY2(!image.isNull(), qPrintable("missing resources/" + file));
    QCOMPARE(image.size(), size);
    QCOMPARE(qAlpha(image.pixel(0, 0)), 0);
}

// Two runs must write the same bytes, or every run would show up as a change.
void TestArtwork::secondRunIsByteIdentical()
{
    QTemporaryDir again;
    QVERIFY(again.isValid());
    QVERIFY(runGenerator(m_program, again.path()));
    for (const QString &relative : m_generated)
        QVERIFY2(fileBytes(m_out.filePath(relative)) == fileBytes(again.filePath(relative)),
                 qPrintable(relative));
}

void TestArtwork::contactSheetCaptionsMatch()
{
    const QByteArray committed = fileBytes(sourceDir() + "/docs/object-pictures.md");
    QVERIFY2(!committed.isEmpty(), "docs/object-pictures.md is not committed");
    QCOMPARE(committed, fileBytes(m_out.filePath("docs/object-pictures.md")));
    // One caption per cell: the 39 objects and the 19 tinted variants.
    QCOMPARE(committed.count("\n58. "), 1);
    QCOMPARE(committed.count("\n59. "), 0);
}

// A missing case in the generator would draw a blank or a copy of another picture.
void TestArtwork::toolbarPicturesAreDistinct()
{
    QList<QImage> pictures;
    for (int i = 0; i < 14; ++i) {
        const QImage image = loadArgb(QString("%1/resources/toolbar/%2.png").arg(sourceDir()).arg(i));
        QVERIFY2(!image.isNull(), qPrintable(QString("toolbar/%1.png").arg(i)));
        int opaque = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                opaque += qAlpha(image.pixel(x, y)) == 255;
        QVERIFY2(opaque >= 40, qPrintable(QString("toolbar/%1.png is nearly empty").arg(i)));
        for (int j = 0; j < pictures.size(); ++j)
            QVERIFY2(pictures[j] != image,
                     qPrintable(QString("toolbar %1 and %2 are the same").arg(j).arg(i)));
        pictures << image;
    }
}

// The drag strip's coordinate map puts the start line at y 5440: a light line across
// the lanes, on darker ground a few pixels before and after it.
void TestArtwork::dragStripStartLine()
{
    const QImage image = loadArgb(sourceDir() + "/backgrounds/AU34.png");
    QVERIFY(!image.isNull());
    auto lightAcross = [&](int y) {
        int light = 0;
        for (int x = 240; x < 340; ++x)
            light += qGray(image.pixel(x, y)) > 200;
        return light;
    };
    QVERIFY(lightAcross(5440) > 80);
    QVERIFY(lightAcross(5430) < 30);
    QVERIFY(lightAcross(5470) < 30);
}

QTEST_GUILESS_MAIN(TestArtwork)
#include "tst_artwork.moc"
