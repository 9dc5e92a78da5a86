#include "app/ui/QtDialogs.h"

#include <QDir>
#include <QFileDialog>
#include <QMessageBox>

namespace {
QString startPath(const FileDialogRequest &r)
{
    if (r.fileName.isEmpty())
        return r.initialDir;
    return QDir(r.initialDir).filePath(r.fileName);
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
