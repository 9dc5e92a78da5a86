#include "app/ui/QtDialogs.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>

namespace {
// Qt starts a dialog whose folder does not exist in whatever folder the last dialog
// showed, so after "Add to pack" a layout's Save As opened in packs/. A remembered save
// folder often is no folder (it keeps as many characters as the file name had), so the
// dialog starts in the nearest folder that exists on the way up instead.
QString startPath(const FileDialogRequest &r)
{
    QString folder = r.initialDir;
    if (!folder.isEmpty()) {
        QFileInfo info(QDir::cleanPath(QDir::fromNativeSeparators(folder)));
        while (!info.isDir() && !info.isRoot() && info.absolutePath() != info.absoluteFilePath())
            info.setFile(info.absolutePath());
        folder = info.isDir() ? info.absoluteFilePath() : QDir::homePath();
    }
    if (r.fileName.isEmpty())
        return folder;
    return QDir(folder).filePath(r.fileName);
}

void configure(QFileDialog &dlg, const FileDialogRequest &r)
{
    const QStringList filters = filterToQt(r.filter);
    dlg.setNameFilters(filters);
    if (r.filterIndex >= 1 && r.filterIndex <= filters.size())
        dlg.selectNameFilter(filters[r.filterIndex - 1]);
    if (!r.defaultExt.isEmpty())
        dlg.setDefaultSuffix(r.defaultExt);
    if (!r.title.isEmpty())
        dlg.setWindowTitle(r.title);
}
} // namespace

MsgResult QtDialogs::message(const QString &text, const QString &title, MsgIcon icon, MsgButtons buttons)
{
    QMessageBox box(m_parent);
    QString shown = text;
    shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    box.setText(shown);
    box.setWindowTitle(title.isEmpty() ? QStringLiteral("Varno") : title);
    switch (icon) {
    case MsgIcon::None: box.setIcon(QMessageBox::NoIcon); break;
    case MsgIcon::Information: box.setIcon(QMessageBox::Information); break;
    case MsgIcon::Question: box.setIcon(QMessageBox::Question); break;
    case MsgIcon::Exclamation: box.setIcon(QMessageBox::Warning); break;
    case MsgIcon::Error: box.setIcon(QMessageBox::Critical); break;
    }
    switch (buttons) {
    case MsgButtons::Ok: box.setStandardButtons(QMessageBox::Ok); break;
    case MsgButtons::OkCancel: box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel); break;
    case MsgButtons::YesNo: box.setStandardButtons(QMessageBox::Yes | QMessageBox::No); break;
    case MsgButtons::YesNoCancel:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        break;
    }
    switch (box.exec()) {
    case QMessageBox::Ok: return MsgResult::Ok;
    case QMessageBox::Yes: return MsgResult::Yes;
    case QMessageBox::No: return MsgResult::No;
    default: return MsgResult::Cancel;
    }
}

QString QtDialogs::openFile(const FileDialogRequest &request)
{
    QFileDialog dlg(m_parent, request.title, startPath(request));
    dlg.setAcceptMode(QFileDialog::AcceptOpen);
    dlg.setFileMode(QFileDialog::ExistingFile);
    configure(dlg, request);
    if (dlg.exec() != QDialog::Accepted || dlg.selectedFiles().isEmpty())
        return {};
    return QDir::toNativeSeparators(dlg.selectedFiles().first());
}

QString QtDialogs::saveFile(const FileDialogRequest &request)
{
    QFileDialog dlg(m_parent, request.title, startPath(request));
    dlg.setAcceptMode(QFileDialog::AcceptSave);
    dlg.setFileMode(QFileDialog::AnyFile);
    configure(dlg, request);
    if (dlg.exec() != QDialog::Accepted || dlg.selectedFiles().isEmpty())
        return {};
    return QDir::toNativeSeparators(dlg.selectedFiles().first());
}

QString QtDialogs::browseFolder(const QString &title, const QString &initialDir)
{
    return QDir::toNativeSeparators(QFileDialog::getExistingDirectory(m_parent, title, initialDir));
}
