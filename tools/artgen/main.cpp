// varno-artgen ROOT: draws every bundled picture into the source tree at ROOT
// (objects/, backgrounds/, resources/, docs/). Run it after changing any artwork and
// commit what it writes; tst_artwork checks that the committed pictures match.

#include "Artwork.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTextStream>

namespace {

int g_written = 0;
int g_failed = 0;

void write(const QImage &image, const QString &path)
{
    if (art::savePng(image, path)) {
        ++g_written;
    } else {
        ++g_failed;
        QTextStream(stderr) << "varno-artgen: cannot write " << path << "\n";
    }
}

void writeText(const QString &text, const QString &path)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        file.write(text.toUtf8());
        ++g_written;
    } else {
        ++g_failed;
        QTextStream(stderr) << "varno-artgen: cannot write " << path << "\n";
    }
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() != 2 || args[1].startsWith('-')) {
        QTextStream(stderr) << "usage: varno-artgen ROOT\n"
                               "Writes objects/, backgrounds/, resources/ and docs/ pictures under ROOT.\n";
        return 2;
    }
    const QDir root(args[1]);
    if (!QDir().mkpath(root.absolutePath())) {
        QTextStream(stderr) << "varno-artgen: cannot create " << root.absolutePath() << "\n";
        return 1;
    }
    auto at = [&](const QString &relative) { return root.absoluteFilePath(relative); };

    for (const art::ObjectPicture &o : art::objectPictures())
        write(o.draw(), at(QString("objects/%1.png").arg(QString::fromLatin1(o.name))));
    for (const art::BackgroundPicture &b : art::backgroundPictures())
        write(b.draw(), at(QString("backgrounds/%1.png").arg(QString::fromLatin1(b.name))));

    write(art::drawPlaceholder(), at("resources/placeholder.png"));
    for (int i = 0; i < art::kToolbarIcons; ++i)
        write(art::drawToolbarIcon(i), at(QString("resources/toolbar/%1.png").arg(i)));
    write(art::drawAppIcon(64), at("resources/varno.png"));
    write(art::drawAppIcon(256), at("resources/varno-256.png"));

    const std::vector<art::SheetCell> cells = art::contactSheetCells();
    write(art::drawContactSheet(cells), at("docs/object-pictures.png"));
    writeText(art::contactSheetCaptions(cells), at("docs/object-pictures.md"));

    QTextStream(stdout) << "varno-artgen: wrote " << g_written << " files under " << root.absolutePath()
                        << "\n";
    return g_failed ? 1 : 0;
}
