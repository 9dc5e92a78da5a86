#pragma once
// The main window: hosts the open layouts, the toolbar, palette, edit bar and status bar,
// and owns the recent-files list.

#include "app/RecentFiles.h"

#include <QMainWindow>

class frmMDI : public QMainWindow {
    Q_OBJECT
public:
    explicit frmMDI(QWidget *parent = nullptr);

    void RecentAdd(const QString &fileName);
    void RecentRemove(const QString &fileName);
    const RecentFiles &recentFiles() const { return m_recent; }

    // Opens (or, for a name that does not exist yet, creates) a document for the file.
    bool LayoutAdd(const QString &fileName);
    // The options command. The full options dialog is not built yet; this says where
    // the settings live.
    void ShowOptions();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    RecentFiles m_recent;
};
