// Save to image on AU1: the whole export beside the encoder alone on the same pixels,
// and the peak memory of a 1000 % JPEG export beside the picture's own size.
//
//   bench_export            all figures (the memory figure runs in a child process)
//   bench_export --peak P   one export at P per cent to JPEG, then prints VmHWM (the child)

#include "base/ConfigFile.h"
#include "base/Language.h"
#include "base/Settings.h"
#include "catalogue/ObjectKinds.h"
#include "base/Dialogs.h"
#include "app/LayoutSession.h"
#include "imaging/ColorMatrix.h"
#include "imaging/PictureEncoders.h"
#include "imaging/cBitmap.h"
#include "app/ImageExportReport.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <memory>

namespace {

// AU1 with a few hundred objects of many kinds spread over it.
std::unique_ptr<LayoutSession> au1Layout(const QString &folder)
{
    auto session = std::make_unique<LayoutSession>();
    session->setFileName(folder + QStringLiteral("/AU1_bench.lyt"));
    session->LayoutLoadBG();
    LayoutDocument *doc = &session->document();
    const int w = doc->BoundsWidth(), h = doc->BoundsHeight();
    int n = 0;
    for (int y = 60; y < h - 60; y += 120)
        for (int x = 60; x < w - 60; x += 120) {
            const int kinds[] = {5, 12, 20, 30, 40, 50, 56, 59};
            int16_t angle = int16_t((n * 37) % 360 - 180);
            uint8_t width = 4;
            bool fromView = false, selected = false;
            doc->ObjectAdd(uint8_t(kinds[n % 8]), int16_t(x), int16_t(y), angle, width, fromView, selected);
            ++n;
        }
    return session;
}

qint64 peakKilobytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').value(0).toLongLong();
    return -1;
}

void setUp()
{
    SetAppPath(QCoreApplication::applicationDirPath());
    InitVarnoResources();
    options() = Options::defaults();
    LoadLanguage();
    FillCatalogue();
    highlightAttributes();
}

int child(int percent)
{
    QTemporaryDir dir;
    auto layout = au1Layout(dir.path());
    const int w = layout->document().BoundsWidth() * percent / 100, h = layout->document().BoundsHeight() * percent / 100;
    QElapsedTimer t;
    t.start();
    const bool ok = LayoutSaveImageFile(layout->document(), layout->Background(), dir.filePath(QStringLiteral("peak.jpg")), w, h, 90);
    std::printf("%d %d %lld %lld %d\n", w, h, peakKilobytes(), t.elapsed(), ok ? 1 : 0);
    return ok ? 0 : 1;
}

double seconds(const QElapsedTimer &t)
{
    return double(t.nsecsElapsed()) / 1e9;
}

} // namespace

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    setUp();
    const QStringList args = QCoreApplication::arguments();
    if (args.size() == 3 && args[1] == QLatin1String("--peak"))
        return child(args[2].toInt());

    QTemporaryDir dir;
    auto layout = au1Layout(dir.path());
    std::printf("AU1 background %d x %d, %d objects\n\n", layout->document().BoundsWidth(), layout->document().BoundsHeight(),
                int(layout->document().Objects().Count()));
    std::printf("%-8s %-5s %13s %10s %14s %7s %10s\n", "percent", "type", "picture", "export s", "encoder only s",
                "ratio", "file MB");
    for (int percent : {100, 400}) {
        const int w = layout->document().BoundsWidth() * percent / 100, h = layout->document().BoundsHeight() * percent / 100;
        for (const char *type : {"png", "jpg"}) {
            const QString out = dir.filePath(QStringLiteral("export.") + QLatin1String(type));
            // Best of three: the machine is shared, and the best run is the one least disturbed.
            double exportTime = 1e9;
            QElapsedTimer t;
            for (int run = 0; run < 3; ++run) {
                t.start();
                if (!LayoutSaveImageFile(layout->document(), layout->Background(), out, w, h, 90)) {
                    std::printf("export to %s failed\n", type);
                    return 1;
                }
                exportTime = std::min(exportTime, seconds(t));
            }
            const double megabytes = double(QFileInfo(out).size()) / 1e6;

            // The encoder alone: the same pixels, already drawn, to a plain file.
            QImage picture(w, h, QImage::Format_ARGB32_Premultiplied);
            RenderLayoutPicture(ExportScene(layout->document(), layout->Background()), picture);
            double encoderTime = 1e9;
            for (int run = 0; run < 3; ++run) {
                QFile raw(dir.filePath(QStringLiteral("raw.") + QLatin1String(type)));
                raw.open(QIODevice::WriteOnly);
                picture::WriteOptions o;
                o.quality = 90;
                t.start();
                picture::write(picture, raw,
                               QLatin1String(type) == QLatin1String("png") ? QStringLiteral("PNG") : QStringLiteral("JPEG"),
                               o);
                raw.close();
                encoderTime = std::min(encoderTime, seconds(t));
            }
            std::printf("%-8d %-5s %6d x %-6d %10.2f %14.2f %7.2f %10.1f\n", percent, type, w, h, exportTime,
                        encoderTime, exportTime / encoderTime, megabytes);
        }
    }

    // The peak of a separate process, so that nothing of the runs above counts.
    const int percent = 1000;
    QProcess p;
    p.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--peak"), QString::number(percent)});
    if (!p.waitForFinished(-1) || p.exitCode() != 0) {
        std::printf("\n1000 %% JPEG export failed: %s\n", p.readAllStandardError().constData());
        return 1;
    }
    const QList<QByteArray> f = p.readAllStandardOutput().trimmed().split(' ');
    const qint64 w = f.value(0).toLongLong(), h = f.value(1).toLongLong();
    const double pictureMB = double(w * h * 4) / 1048576.0;
    const double peakMB = double(f.value(2).toLongLong()) / 1024.0;
    std::printf("\n1000 %% JPEG export, %lld x %lld: %.1f s\n", w, h, double(f.value(3).toLongLong()) / 1000.0);
    std::printf("  picture in memory (W x H x 4): %8.0f MB\n", pictureMB);
    std::printf("  peak memory of the process:    %8.0f MB  (%.2f x the picture)\n", peakMB, peakMB / pictureMB);
    return 0;
}
