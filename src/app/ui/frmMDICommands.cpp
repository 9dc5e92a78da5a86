// The main window's commands and how it follows the active document.

#include "app/ui/frmMDI.h"

#include "base/ErrorLog.h"
#include "base/Language.h"
#include "base/Settings.h"
#include "app/ui/Editbar.h"
#include "app/ui/frmOptions.h"
#include "catalogue/ObjectKinds.h"
#include "catalogue/PackList.h"
#include "catalogue/ui/Objectbar.h"
#include "controls/frmAbout.h"
#include "base/Dialogs.h"
#include "base/Runtime.h"
#include "view/ui/frmLayout.h"

#include <QAction>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTabWidget>
#include <QUrl>

// --- documents ---------------------------------------------------------------------

bool frmMDI::LayoutAdd(const QString &fileName)
{
    bool added = false;
    guarded(QStringLiteral("frmMDI.LayoutAdd"), [&] {
        auto *layout = new frmLayout(m_tabs);
        layout->hide();
        if (!layout->Initilize(fileName)) {
            delete layout;
            return;
        }
        const int index = m_tabs->addTab(layout, layout->Caption());
        m_tabs->setTabToolTip(index, fileName);
        layout->setTabIndex(index);
        m_tabs->setCurrentIndex(index);
        layout->setFocus();
        added = true;
    });
    return added;
}

bool frmMDI::CloseLayout(frmLayout *layout)
{
    if (!layout)
        return true;
    if (!layout->QueryClose())
        return false;
    if (layout == m_current)
        setCurrent(nullptr);
    m_tabs->removeTab(m_tabs->indexOf(layout));
    layout->deleteLater();
    renumberTabs();
    setCurrent(qobject_cast<frmLayout *>(m_tabs->currentWidget()));
    return true;
}

void frmMDI::renumberTabs()
{
    for (int i = 0; i < m_tabs->count(); ++i)
        if (frmLayout *l = layoutAt(i))
            l->setTabIndex(i);
}

// The window listens to the active document only; switching tabs moves the
// connections, refreshes the palette for the document's site and refills the bars.
void frmMDI::setCurrent(frmLayout *layout)
{
    if (m_current == layout && layout)
        return;
    if (m_current) {
        disconnect(m_current, nullptr, this, nullptr);
        disconnect(m_current->undoStack(), nullptr, this, nullptr);
    }
    m_current = layout;
    const bool open = layout != nullptr;
    m_central->setCurrentIndex(m_tabs->count() > 0 ? 1 : 0);
    QList<QAction *> needDocument = m_editCommands + m_saveMenu->actions() + m_zoomMenu->actions();
    needDocument << m_toolSelect << m_toolZoom;
    for (int b : {3, 4, 6, 7, 9, 10, 12, 13})
        needDocument << toolAction(b);
    for (QAction *a : needDocument)
        a->setEnabled(open);
    m_laps->setEnabled(open);
    if (open) {
        connect(layout, &frmLayout::Message, this, &frmMDI::CurrentLayout_Message);
        connect(layout, &frmLayout::Updated, this, &frmMDI::CurrentLayout_Updated);
        connect(layout, &frmLayout::ObjectUpdated, this, &frmMDI::CurrentLayout_ObjectUpdated);
        connect(layout, &frmLayout::ToolChanged, this, [this] {
            // The old tool's hint goes with it (change mode keeps its own).
            if (!m_changeMode)
                m_panels[0]->clear();
            refreshTools();
        });
        connect(layout->undoStack(), &QUndoStack::canUndoChanged, this, [this](bool can) { m_undo->setEnabled(can); });
        connect(layout->undoStack(), &QUndoStack::canRedoChanged, this, [this](bool can) { m_redo->setEnabled(can); });
        setWindowTitle(QStringLiteral("Varno - ") + layout->LayoutName());
    } else {
        setWindowTitle(QStringLiteral("Varno"));
        for (int i = 1; i < 7; ++i)
            m_panels[i]->clear();
        const QSignalBlocker block(m_laps);
        m_laps->setValue(0);
    }
    m_undo->setEnabled(open && layout->undoStack()->canUndo());
    m_redo->setEnabled(open && layout->undoStack()->canRedo());
    refreshCatalogue();
    refreshEditbar();
    refreshTools();
    if (open)
        CurrentLayout_Updated();
}

// The palette shows what the active layout accepts: the kinds of its site, and the
// unique ones not placed yet.
void frmMDI::refreshCatalogue()
{
    guarded(QStringLiteral("frmMDI.RefreshCatalogue"), [&] {
        if (m_current) {
            const LayoutDocument &d = m_current->document();
            UpdateAllowedAvailable(d.LayoutType(), d.HasStart(), d.HasCheckpoint1(), d.HasCheckpoint2(),
                                   d.HasCheckpoint3(), d.HasFinish());
        } else {
            UpdateAllowedAvailable(QStringLiteral("AU1"), false, false, false, false, false);
        }
        if (m_palette->CurrentPanel() == 6)
            m_palette->RefreshPacks();
        m_palette->Repaint();
    });
}

void frmMDI::refreshEditbar()
{
    if (m_current)
        m_editbar->Fill(m_current->document());
    else
        m_editbar->Fill();
}

void frmMDI::refreshTools()
{
    const int tool = m_current ? m_current->Tool() : ToolSelect;
    const int tools[4] = {ToolSelect, ToolZoom, ToolMeasure, ToolLine};
    const QList<QAction *> buttons = toolButtons();
    for (int i = 0; i < 4; ++i)
        buttons[i]->setChecked(tool == tools[i]);
}

void frmMDI::ChooseTool(int tool)
{
    if (m_current)
        m_current->setTool(tool);
    refreshTools(); // a click on the tool in use must not uncheck it
}

// --- the document's events ---------------------------------------------------------

void frmMDI::CurrentLayout_Message(bool refusal, int16_t x, int16_t y, const QString &text)
{
    // A pointer move with nothing to say leaves the last message standing until its
    // time is up; change mode keeps its hint in place of any message.
    if (!m_changeMode && (refusal || !text.isEmpty())) {
        m_panels[0]->setText(text);
        m_messageTimer.start();
    }
    m_panels[5]->setText(QStringLiteral("  ") + Lang(68) + QStringLiteral(": ") + QString::number(x));
    m_panels[6]->setText(QStringLiteral("  ") + Lang(69) + QStringLiteral(": ") + QString::number(y));
}

void frmMDI::CurrentLayout_Updated()
{
    if (!m_current)
        return;
    const int index = m_current->TabIndex();
    if (index >= 0 && index < m_tabs->count())
        m_tabs->setTabText(index, m_current->Caption());
    setWindowTitle(QStringLiteral("Varno - ") + m_current->LayoutName());
    {
        const QSignalBlocker block(m_laps);
        m_laps->setValue(m_current->Laps());
    }
    m_panels[1]->setText(QStringLiteral(" ") + Lang(65) + QStringLiteral(": ") + QString::number(m_current->Laps()));
    m_panels[2]->setText(QStringLiteral(" ") + Lang(66) + QStringLiteral(": ") + QString::number(m_current->ObjectCount()));
    m_panels[3]->setText(QStringLiteral(" ") + Lang(67) + QStringLiteral(": ") + FormatPercent(m_current->Zoom()));
    const int16_t objectZoom = m_current->ObjectZoom();
    m_panels[4]->setText(QStringLiteral(" ") + Lang(70) + QStringLiteral(": ")
                         + FormatPercent(objectZoom / 100.0));
    toolAction(9)->setEnabled(objectZoom < ViewGeometry::MaxObjectZoom);
    toolAction(10)->setEnabled(objectZoom > ViewGeometry::MinObjectZoom);
}

void frmMDI::CurrentLayout_ObjectUpdated(bool, bool, bool, bool, bool)
{
    refreshCatalogue();
    refreshEditbar();
}

// --- toolbar -----------------------------------------------------------------------

void frmMDI::ToolbarClick(int button)
{
    guarded(QStringLiteral("frmMDI.Toolbar_ButtonClick"), [&] {
        switch (button) {
        case 2: OpenLayout(); break;
        case 4:
            CloseLayout(m_current);
            break;
        case 6:
        case 7:
            if (m_current)
                m_current->setZoom(button == 6 ? m_current->Zoom() * 2 : m_current->Zoom() / 2);
            break;
        case 9:
        case 10:
            if (m_current) {
                const int16_t z = m_current->ObjectZoom();
                m_current->setObjectZoom(button == 9 ? rt::mul16(z, 2) : rt::toInt16(z / 2.0));
            }
            break;
        case 12:
        case 13:
            // A second press on the tool in use releases it, back to selecting.
            ChooseTool(toolAction(button)->isChecked() ? (button == 12 ? ToolMeasure : ToolLine)
                                                       : ToolSelect);
            break;
        case 15: ShowOptions(); break;
        case 16: ShowAbout(); break;
        default: break;
        }
    });
}

void frmMDI::NewLayout(int index)
{
    static const char *const prefixes[5] = {"AU1_", "AU2_", "AU3_", "AU4_", "BL3_"};
    if (index < 0 || index >= 5)
        return;
    LayoutAdd(QLatin1String(prefixes[index]) + Lang(104) + QStringLiteral(".lyt"));
}

void frmMDI::OpenLayout()
{
    FileDialogRequest request;
    request.filter = Lang(100) + QStringLiteral(" (*.lyt)|*.lyt|") + Lang(102) + QStringLiteral(" (*.*)|*.*");
    request.filterIndex = 1;
    request.initialDir = options().OpenFolder;
    request.title = Lang(31);
    const QString chosen = dialogs().openFile(request);
    if (chosen.isEmpty())
        return;
    if (LayoutAdd(chosen))
        RecentAdd(chosen);
    if (options().RememberOpenFolder)
        options().OpenFolder = chosen.left(chosen.length() - fileTitle(chosen).length());
}

void frmMDI::OpenRecent(int index)
{
    const QStringList items = m_recent.items();
    if (index < 0 || index >= items.size() || items[index].isEmpty())
        return;
    const QString path = items[index];
    if (!LayoutAdd(path))
        RecentRemove(path);
}

void frmMDI::SaveCommand(int index)
{
    if (!m_current)
        return;
    if (index == 0 || index == 1) {
        if (m_current->LayoutSave(index == 1)) {
            RecentAdd(m_current->session().FileName());
            m_tabs->setTabToolTip(m_current->TabIndex(), m_current->session().FileName());
        }
    } else if (index == 2) {
        m_current->LayoutSaveImage();
    }
}

void frmMDI::ZoomCommand(int index)
{
    if (!m_current)
        return;
    switch (index) {
    case 0: m_current->setZoom(87); break;
    case 1: m_current->setZoom(72); break;
    case 2: m_current->ZoomToSelection(); break;
    default: break;
    }
}

void frmMDI::Undo()
{
    if (m_current)
        m_current->Undo();
}

void frmMDI::Redo()
{
    if (m_current)
        m_current->Redo();
}

void frmMDI::ShowOptions()
{
    if (::ShowOptions(this, [this] { return m_recent.items(); }))
        OptionsSaved();
}

void frmMDI::OptionsSaved()
{
    // A saved dialog may have changed the language: every caption is read again.
    guarded(QStringLiteral("frmMDI.ShowOptions"), [&] {
        setCaptions();
        m_palette->Initilize();
        refreshCatalogue();
        refreshEditbar();
    });
}

void frmMDI::ShowAbout()
{
    frmAbout about(this);
    about.exec();
}

// --- edit bar and palette ----------------------------------------------------------

void frmMDI::Editbar_ChangeClicked()
{
    m_changeMode = !m_changeMode;
    m_panels[0]->setText(m_changeMode ? Lang(150) : QString());
}

void frmMDI::Objectbar_ItemClicked(int16_t item)
{
    if (m_changeMode && m_current && item >= 0 && item < KindCount)
        m_current->ObjectChange(uint8_t(item));
}

frmLayout *frmMDI::layoutUnder(int16_t x, int16_t y, QPoint *viewPos) const
{
    if (!m_current)
        return nullptr;
    QWidget *canvas = m_current->canvas();
    const QPoint global = m_palette->mapToGlobal(QPoint(x, y));
    const QPoint local = canvas->mapFromGlobal(global);
    if (!canvas->rect().contains(local))
        return nullptr;
    *viewPos = local;
    return m_current;
}

void frmMDI::paletteDrag(int16_t item, int16_t x, int16_t y, bool drop)
{
    if (!m_current)
        return;
    QPoint at;
    frmLayout *target = layoutUnder(x, y, &at);
    const bool pack = m_palette->CurrentPanel() == 6;
    if (!target) {
        m_current->EndPreview();
        return;
    }
    if (pack) {
        if (item < 1 || item > m_palette->Packs().Count())
            return;
        const QString file = m_palette->Packs().Entry(item).FileName;
        // The drop itself arrives as PackDropped.
        if (!drop)
            target->PackDraw(file, at);
        return;
    }
    if (drop)
        target->DropKind(item, at);
    else
        target->ObjectDraw(item, at);
}

void frmMDI::packDropped(const QString &packFile, int16_t x, int16_t y)
{
    QPoint at;
    if (frmLayout *target = layoutUnder(x, y, &at))
        target->DropPack(packFile, at);
    else if (m_current)
        m_current->EndPreview();
}

// --- files dropped from the desktop ------------------------------------------------

void frmMDI::dragEnterEvent(QDragEnterEvent *event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void frmMDI::dropEvent(QDropEvent *event)
{
    for (const QUrl &url : event->mimeData()->urls()) {
        if (!url.isLocalFile())
            continue;
        const QString path = QDir::toNativeSeparators(url.toLocalFile()); // with "\" on Windows
        if (LayoutAdd(path))
            RecentAdd(path);
    }
    event->acceptProposedAction();
}
