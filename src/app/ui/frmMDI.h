#pragma once
// The main window: the open layouts in tabs, the toolbar with its pop-ups, the status
// bar, the laps box, the palette and the edit bar. Every command goes to the active
// document (CurrentLayout), and the window follows that document through its events.

#include "app/RecentFiles.h"
#include "view/ui/frmLayout.h"

#include <QMainWindow>
#include <QPointer>
#include <QTimer>

class Editbar;
class Objectbar;
class QDockWidget;
class QLabel;
class QMenu;
class QSpinBox;
class QStackedWidget;
class QTabWidget;
class QToolButton;
class QAction;

class frmMDI : public QMainWindow {
    Q_OBJECT
public:
    explicit frmMDI(QWidget *parent = nullptr);
    ~frmMDI() override;

    void RecentAdd(const QString &fileName);
    void RecentRemove(const QString &fileName);
    const RecentFiles &recentFiles() const { return m_recent; }

    // Opens (or, for a name that does not exist yet, creates) a document for the file.
    bool LayoutAdd(const QString &fileName);
    // The active document, or nullptr while none is open.
    frmLayout *CurrentLayout() const { return m_current; }
    int LayoutCount() const;
    frmLayout *layoutAt(int index) const;

    // --- commands (toolbar buttons, pop-ups) -----------------------------------------
    void NewLayout(int index);          // the New pop-up, 0 .. 4
    void OpenLayout();                  // the Open button
    void OpenRecent(int index);         // a recent-files item
    void SaveCommand(int index);        // the Save pop-up, 0 .. 2
    void ZoomCommand(int index);        // the Zoom pop-up, 0 .. 2
    // Toolbar button by its number (1 .. 16).
    void ToolbarClick(int button);
    // The select or the zoom tool (the buttons and menu items beside measure and line).
    void ChooseTool(int tool);
    // Closes one document, asking about unsaved changes; false when the user cancelled.
    bool CloseLayout(frmLayout *layout);
    void ShowOptions();
    // After the options dialog saved: captions, palette and edit bar follow the new settings.
    void OptionsSaved();
    void ShowAbout();
    void Undo();
    void Redo();

    // --- parts, for the tests ---------------------------------------------------------
    Objectbar *palette() const { return m_palette; }
    Editbar *editbar() const { return m_editbar; }
    QTabWidget *tabs() const { return m_tabs; }
    QSpinBox *lapsBox() const { return m_laps; }
    QString panelText(int panel) const; // 1 .. 7
    QMenu *newMenu() const { return m_newMenu; }
    QMenu *openMenu() const { return m_openMenu; }
    QAction *toolAction(int button) const; // by button number, 1 .. 16
    // The checked tool buttons: select, zoom, measure (12), object line (13).
    QList<QAction *> toolButtons() const;
    bool ChangeMode() const { return m_changeMode; }

    // "###%": a factor of 1 is "100%".
    static QString FormatPercent(double factor);

protected:
    void closeEvent(QCloseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void buildToolbar();
    void buildMenus();
    void buildStatusbar();
    void buildDocks();
    void setCaptions();
    void fillRecentMenu();
    void setCurrent(frmLayout *layout);
    void refreshCatalogue();
    void refreshEditbar();
    void refreshTools();
    void renumberTabs();

    void CurrentLayout_Message(bool refusal, int16_t x, int16_t y, const QString &text);
    void CurrentLayout_Updated();
    void CurrentLayout_ObjectUpdated(bool start, bool cp1, bool cp2, bool cp3, bool finish);
    void Editbar_ChangeClicked();
    void Objectbar_ItemClicked(int16_t item);
    void paletteDrag(int16_t item, int16_t x, int16_t y, bool drop);
    void packDropped(const QString &packFile, int16_t x, int16_t y);
    // The document canvas under a point of the palette, and the point in its pixels.
    frmLayout *layoutUnder(int16_t x, int16_t y, QPoint *viewPos) const;

    RecentFiles m_recent;
    QPointer<frmLayout> m_current;
    QStackedWidget *m_central = nullptr;
    QLabel *m_welcome = nullptr;
    QTabWidget *m_tabs = nullptr;
    Objectbar *m_palette = nullptr;
    Editbar *m_editbar = nullptr;
    QDockWidget *m_paletteDock = nullptr;
    QDockWidget *m_editDock = nullptr;
    QSpinBox *m_laps = nullptr;
    QLabel *m_lapsLabel = nullptr;
    QLabel *m_panels[7] = {};
    QTimer m_messageTimer;
    QMenu *m_newMenu = nullptr;
    QMenu *m_openMenu = nullptr;
    QMenu *m_saveMenu = nullptr;
    QMenu *m_zoomMenu = nullptr;
    QList<QAction *> m_buttons; // toolbar actions by button number - 1 (separators included)
    QAction *m_toolSelect = nullptr;
    QAction *m_toolZoom = nullptr;
    QAction *m_quit = nullptr;
    QList<QAction *> m_editCommands; // select all, copy, paste, duplicate, delete
    QMenu *m_menus[5] = {};          // File, Edit, View, Tools, Help
    QAction *m_undo = nullptr;
    QAction *m_redo = nullptr;
    bool m_changeMode = false;
    int m_paletteWidth = 200;
};
