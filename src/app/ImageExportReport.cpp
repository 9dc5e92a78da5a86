#include "app/ImageExportReport.h"

#include "base/Dialogs.h"
#include "base/ErrorLog.h"
#include "imaging/cGDIP.h"

#include <QLocale>

namespace {
const QString kWhere = QStringLiteral("frmLayout.LayoutSaveImageFile");
} // namespace

void ReportImageExport(const ImageExportResult &result, int width, int height)
{
    switch (result.status) {
    case ImageExportResult::Written:
    case ImageExportResult::Cancelled:
        return;
    case ImageExportResult::UnknownFormat:
        cGDIP::ShowUnknownFormat(result.extension);
        return;
    case ImageExportResult::NoMemory: {
        const QLocale locale;
        dialogs().message(QStringLiteral("A picture of %1 x %2 pixels needs %3 of memory, and that much is not "
                                         "available.\r\n\r\nNothing was saved. Choose a smaller size and try again.")
                              .arg(width)
                              .arg(height)
                              .arg(locale.formattedDataSize(result.bytesNeeded)),
                          QStringLiteral("Save to image"), MsgIcon::Exclamation);
        return;
    }
    case ImageExportResult::Failed:
        ReportError(result.error.value_or(rt::Error(rt::InvalidCall)), result.where.isEmpty() ? kWhere : result.where);
        return;
    }
}

bool LayoutSaveImageFile(const LayoutDocument &doc, const cBitmap &background, const QString &fileName, int width,
                         int height, int quality, const ExportProgress &progress)
{
    const ImageExportResult result =
        RenderLayoutImage(ExportScene(doc, background), fileName, width, height, quality, progress);
    ReportImageExport(result, width, height);
    return result.status == ImageExportResult::Written;
}
