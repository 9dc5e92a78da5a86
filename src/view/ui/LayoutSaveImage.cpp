#include "view/ui/LayoutSaveImage.h"

#include "base/Language.h"
#include "base/Settings.h"
#include "base/Dialogs.h"
#include "app/LayoutSession.h"
#include "app/ImageExportReport.h"
#include "view/SaveImageRules.h"
#include "view/ui/frmSave.h"

#include <QEventLoop>
#include <QProgressDialog>
#include <QThread>
#include <QTimer>

#include <atomic>
#include <memory>

bool SaveImageWithProgress(const LayoutSession &session, const QString &fileName, int width, int height, int quality,
                           QWidget *parent)
{
    // Copied here, on the window's thread: the window may repaint while the worker draws.
    const ExportScene scene(session.document(), session.Background());

    std::atomic<int> permille{0};
    std::atomic<bool> cancelled{false};
    ImageExportResult result;

    QProgressDialog progress(Lang(57), Lang(195), 0, 1000, parent);
    progress.setWindowTitle(Lang(57));
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(400);
    progress.setAutoReset(false);
    progress.setAutoClose(false);
    progress.setValue(0);
    QObject::connect(&progress, &QProgressDialog::canceled, [&] { cancelled = true; });

    std::unique_ptr<QThread> worker(QThread::create([&] {
        result = RenderLayoutImage(scene, fileName, width, height, quality, [&](double fraction) {
            permille = int(fraction * 1000.0);
            return !cancelled.load();
        });
    }));
    QEventLoop loop;
    QObject::connect(worker.get(), &QThread::finished, &loop, &QEventLoop::quit);
    QTimer tick;
    tick.setInterval(50);
    QObject::connect(&tick, &QTimer::timeout, [&] {
        if (!cancelled)
            progress.setValue(std::min(999, permille.load()));
    });
    worker->start();
    tick.start();
    loop.exec(QEventLoop::AllEvents);
    worker->wait();
    tick.stop();
    progress.close();

    ReportImageExport(result, width, height);
    return result.status == ImageExportResult::Written;
}

bool LayoutSaveImage(const LayoutSession &session, QWidget *parent)
{
    const Options &o = options();
    FileDialogRequest request;
    request.filter = SaveImageFilter(o.SaveType);
    request.filterIndex = 1;
    request.initialDir = o.SaveFolder;
    request.fileName = SaveImageProposedName(session.LayoutName(), o.SaveType);
    const QString chosen = dialogs().saveFile(request);
    if (chosen.isEmpty())
        return false;
    if (options().RememberSaveFolder)
        options().SaveFolder = RememberedSaveFolder(chosen);

    bool written = false;
    frmSave dialog(parent);
    dialog.setSaveCallback([&](const QString &fileName, int width, int height, int quality) {
        written = SaveImageWithProgress(session, fileName, width, height, quality, &dialog);
    });
    dialog.Save(chosen, session.Background().Width(), session.Background().Height(), o.SavePercent, o.SaveQuality);
    return written;
}
