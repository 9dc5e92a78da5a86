#include "app/ui/frmMDI.h"

#include "app/Config.h"
#include "app/Language.h"
#include "app/Startup.h"
#include "core/Dialogs.h"

#include <QAction>
#include <QCloseEvent>
#include <QKeySequence>
#include <QFileInfo>
#include <QIcon>

frmMDI::frmMDI(QWidget *parent) : QMainWindow(parent)
{
    setWindowTitle(QStringLiteral("Varno"));
    setWindowIcon(QIcon(QStringLiteral(":/icons/varno.png")));
    resize(1280, 800);

    auto *quit = new QAction(this);
    quit->setShortcut(QKeySequence::Quit);
    quit->setShortcutContext(Qt::ApplicationShortcut);
    connect(quit, &QAction::triggered, this, &QWidget::close);
    addAction(quit);
}

void frmMDI::RecentAdd(const QString &fileName)
{
    m_recent.RecentAdd(fileName);
}

void frmMDI::RecentRemove(const QString &fileName)
{
    m_recent.RecentRemove(fileName);
}

bool frmMDI::LayoutAdd(const QString &fileName)
{
    // Documents arrive with the document window; until then a file can only be named.
    if (!QFileInfo::exists(fileName)) {
        dialogs().message(fileName + QStringLiteral("\r\n\r\n") + Lang(166), QString(), MsgIcon::Information);
        return false;
    }
    setWindowTitle(QStringLiteral("Varno - ") + QFileInfo(fileName).fileName());
    return true;
}

void frmMDI::closeEvent(QCloseEvent *event)
{
    SaveOptions(m_recent.items());
    event->accept();
}

void frmMDI::ShowOptions()
{
    dialogs().message(QStringLiteral("Varno keeps its settings in\r\n") + ConfigPath()
                          + QStringLiteral("\r\n\r\nThe options dialog is not available in this version yet."),
                      Lang(50), MsgIcon::Information);
}
