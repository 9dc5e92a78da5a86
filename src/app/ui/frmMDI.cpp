// The main window's frame: toolbar, status bar, docks, tabs and captions.

#include "app/ui/frmMDI.h"

#include "base/ConfigFile.h"
#include "base/ErrorLog.h"
#include "base/Language.h"
#include "base/Settings.h"
#include "app/ui/Editbar.h"
#include "catalogue/ui/Objectbar.h"
#include "view/ui/frmLayout.h"

#include <QAction>
#include <QCloseEvent>
#include <QDockWidget>
#include <QHBoxLayout>
#include <QIcon>
#include <QKeySequence>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QSpinBox>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTabBar>
#include <QTabWidget>
#include <QToolBar>
#include <QToolButton>

namespace {
// How long a message stays in the first panel.
constexpr int MessageMs = 4000;

QIcon toolbarIcon(int image)
{
    return QIcon(QStringLiteral(":/toolbar/%1.png").arg(image));
}
} // namespace

frmMDI::frmMDI(QWidget *parent) : QMainWindow(parent)
{
    setWindowTitle(QStringLiteral("Varno"));
    setWindowIcon(QIcon(QStringLiteral(":/icons/varno.png")));
    setAcceptDrops(true);
    resize(1280, 800);

    // With no layout open the frame shows where to start instead of an empty hole.
    m_central = new QStackedWidget(this);
    m_welcome = new QLabel(m_central);
    m_welcome->setAlignment(Qt::AlignCenter);
    m_welcome->setEnabled(false);
    m_tabs = new QTabWidget(m_central);
    m_tabs->setDocumentMode(true);
    m_tabs->setTabsClosable(true);
    m_tabs->setMovable(false);
    m_central->addWidget(m_welcome);
    m_central->addWidget(m_tabs);
    setCentralWidget(m_central);
    connect(m_tabs, &QTabWidget::currentChanged, this,
            [this](int index) { setCurrent(qobject_cast<frmLayout *>(m_tabs->widget(index))); });
    connect(m_tabs, &QTabWidget::tabCloseRequested, this,
            [this](int index) { CloseLayout(qobject_cast<frmLayout *>(m_tabs->widget(index))); });

    m_messageTimer.setSingleShot(true);
    m_messageTimer.setInterval(MessageMs);
    connect(&m_messageTimer, &QTimer::timeout, this, [this] {
        // The change-mode hint stays for as long as the mode is on.
        if (!m_changeMode)
            m_panels[0]->clear();
    });

    buildToolbar();
    buildMenus();
    buildStatusbar();
    buildDocks();
    setCaptions();

    setCurrent(nullptr);
}

frmMDI::~frmMDI()
{
    // Closing tabs while the children go would call back into this half-destroyed window.
    m_tabs->disconnect(this);
    if (m_current) {
        m_current->disconnect(this);
        m_current->undoStack()->disconnect(this);
    }
}

void frmMDI::buildToolbar()
{
    QToolBar *bar = addToolBar(QStringLiteral("Toolbar"));
    bar->setObjectName(QStringLiteral("Toolbar"));
    bar->setMovable(false);
    bar->setIconSize(QSize(24, 24));
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);

    m_newMenu = new QMenu(this);
    for (int i = 0; i < 5; ++i)
        connect(m_newMenu->addAction(QString()), &QAction::triggered, this, [this, i] { NewLayout(i); });
    m_openMenu = new QMenu(this);
    connect(m_openMenu, &QMenu::aboutToShow, this, &frmMDI::fillRecentMenu);
    m_saveMenu = new QMenu(this);
    for (int i = 0; i < 3; ++i)
        connect(m_saveMenu->addAction(QString()), &QAction::triggered, this, [this, i] { SaveCommand(i); });
    m_zoomMenu = new QMenu(this);
    for (int i = 0; i < 3; ++i)
        connect(m_zoomMenu->addAction(QString()), &QAction::triggered, this, [this, i] { ZoomCommand(i); });

    // Image, drop-down menu and whether the button keeps a caption, per button number.
    struct Button {
        int image;
        QMenu *menu;
        bool caption;
        bool check;
    };
    const Button buttons[16] = {
        {0, m_newMenu, true, false}, {1, m_openMenu, true, false}, {2, m_saveMenu, true, false},
        {3, nullptr, true, false},   {-1, nullptr, false, false},  {4, m_zoomMenu, false, false},
        {5, nullptr, false, false},  {-1, nullptr, false, false},  {6, nullptr, false, false},
        {7, nullptr, false, false},  {-1, nullptr, false, false},  {8, nullptr, true, true},
        {9, nullptr, true, true},    {-1, nullptr, false, false},  {10, nullptr, true, false},
        {11, nullptr, false, false}};
    for (int i = 0; i < 16; ++i) {
        const Button &b = buttons[i];
        if (b.image < 0) {
            m_buttons.append(bar->addSeparator());
            continue;
        }
        const int number = i + 1;
        // The select and zoom tools stand with measure and line: the checked one of the
        // four is the tool in use.
        if (number == 12) {
            m_toolSelect =
                bar->addAction(toolbarIcon(14), QString(), this, [this] { ChooseTool(ToolSelect); });
            m_toolZoom = bar->addAction(toolbarIcon(15), QString(), this, [this] { ChooseTool(ToolZoom); });
            for (QAction *a : {m_toolSelect, m_toolZoom}) {
                a->setCheckable(true);
                if (auto *tb = qobject_cast<QToolButton *>(bar->widgetForAction(a)))
                    tb->setToolButtonStyle(Qt::ToolButtonIconOnly);
            }
        }
        auto *action = new QAction(toolbarIcon(b.image), QString(), this);
        action->setCheckable(b.check);
        connect(action, &QAction::triggered, this, [this, number] { ToolbarClick(number); });
        if (b.menu) {
            auto *tb = new QToolButton(bar);
            tb->setDefaultAction(action);
            tb->setMenu(b.menu);
            // New and Save have no action of their own; the button opens the pop-up.
            tb->setPopupMode(number == 1 || number == 3 ? QToolButton::InstantPopup : QToolButton::MenuButtonPopup);
            tb->setToolButtonStyle(b.caption ? Qt::ToolButtonTextBesideIcon : Qt::ToolButtonIconOnly);
            bar->addWidget(tb);
        } else {
            bar->addAction(action);
            if (!b.caption) {
                if (auto *tb = qobject_cast<QToolButton *>(bar->widgetForAction(action)))
                    tb->setToolButtonStyle(Qt::ToolButtonIconOnly);
            }
        }
        m_buttons.append(action);
        // Undo and redo sit with the file commands.
        if (number == 4) {
            bar->addSeparator();
            m_undo = bar->addAction(toolbarIcon(12), QString(), this, &frmMDI::Undo);
            m_redo = bar->addAction(toolbarIcon(13), QString(), this, &frmMDI::Redo);
            for (QAction *a : {m_undo, m_redo})
                if (auto *tb = qobject_cast<QToolButton *>(bar->widgetForAction(a)))
                    tb->setToolButtonStyle(Qt::ToolButtonIconOnly);
        }
    }

    bar->addSeparator();
    m_lapsLabel = new QLabel(bar);
    m_lapsLabel->setContentsMargins(6, 0, 4, 0);
    bar->addWidget(m_lapsLabel);
    m_laps = new QSpinBox(bar);
    m_laps->setRange(0, 255);
    m_laps->setKeyboardTracking(false);
    bar->addWidget(m_laps);
    connect(m_laps, &QSpinBox::valueChanged, this, [this](int v) {
        if (m_current)
            m_current->setLaps(uint8_t(v));
    });
}

// The menu bar holds the toolbar's own actions (so checks and enabled states agree) and
// shows their shortcuts. A shortcut that is also in a document's key table only acts
// while the keyboard is elsewhere: the layout claims its keys first.
void frmMDI::buildMenus()
{
    const auto keyed = [](QAction *a, const QList<QKeySequence> &keys) {
        a->setShortcuts(keys);
        return a;
    };
    const QList<QAction *> saves = m_saveMenu->actions();
    const QList<QAction *> zooms = m_zoomMenu->actions();
    m_quit = new QAction(this);
    m_quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    m_quit->setShortcutContext(Qt::ApplicationShortcut);
    connect(m_quit, &QAction::triggered, this, &QWidget::close);

    QMenuBar *bar = menuBar();
    for (QMenu *&m : m_menus)
        m = bar->addMenu(QString());
    QMenu *file = m_menus[0];
    file->addMenu(m_newMenu);
    file->addAction(keyed(toolAction(2), {QKeySequence(Qt::CTRL | Qt::Key_O)}));
    file->addMenu(m_openMenu);
    file->addSeparator();
    file->addAction(keyed(saves[0], {QKeySequence(Qt::CTRL | Qt::Key_S)}));
    file->addAction(keyed(saves[1], {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S)}));
    file->addAction(saves[2]);
    file->addSeparator();
    file->addAction(toolAction(4));
    file->addSeparator();
    file->addAction(m_quit);

    // Edit: undo and redo, then the document's own clipboard keys, sent to it as if typed.
    QMenu *edit = m_menus[1];
    edit->addAction(keyed(m_undo, {QKeySequence(Qt::ALT | Qt::Key_Backspace)}));
    edit->addAction(
        keyed(m_redo, {QKeySequence(Qt::CTRL | Qt::Key_Y), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)}));
    edit->addSeparator();
    const struct {
        int code;
        QKeySequence keys;
    } editKeys[] = {{65, QKeySequence(Qt::CTRL | Qt::Key_A)}, {67, QKeySequence(Qt::CTRL | Qt::Key_C)},
                    {86, QKeySequence(Qt::CTRL | Qt::Key_V)}, {68, QKeySequence(Qt::CTRL | Qt::Key_D)},
                    {46, QKeySequence(Qt::Key_Delete)}};
    for (const auto &k : editKeys) {
        QAction *a = edit->addAction(QString());
        a->setShortcut(k.keys);
        const int code = k.code;
        connect(a, &QAction::triggered, this, [this, code] {
            if (m_current)
                m_current->KeyDown(code, code == 46 ? 0 : 2);
        });
        m_editCommands << a;
    }

    QMenu *view = m_menus[2];
    view->addAction(keyed(toolAction(6), {QKeySequence(Qt::Key_Plus)}));
    view->addAction(keyed(toolAction(7), {QKeySequence(Qt::Key_Minus)}));
    view->addAction(keyed(zooms[0], {QKeySequence(Qt::CTRL | Qt::Key_W)}));
    view->addAction(keyed(zooms[1], {QKeySequence(Qt::CTRL | Qt::Key_H)}));
    view->addAction(zooms[2]);
    view->addSeparator();
    view->addAction(toolAction(9));
    view->addAction(toolAction(10));

    QMenu *tools = m_menus[3];
    tools->addAction(m_toolSelect);
    tools->addAction(keyed(m_toolZoom, {QKeySequence(Qt::CTRL | Qt::Key_Z)}));
    tools->addAction(keyed(toolAction(12), {QKeySequence(Qt::CTRL | Qt::Key_M)}));
    tools->addAction(keyed(toolAction(13), {QKeySequence(Qt::CTRL | Qt::Key_L)}));
    tools->addSeparator();
    tools->addAction(toolAction(15));

    m_menus[4]->addAction(toolAction(16));
}

void frmMDI::buildStatusbar()
{
    QStatusBar *sb = statusBar();
    for (int i = 0; i < 7; ++i) {
        m_panels[i] = new QLabel(sb);
        m_panels[i]->setContentsMargins(4, 0, 4, 0);
        if (i == 0)
            sb->addWidget(m_panels[i], 1);
        else
            sb->addPermanentWidget(m_panels[i]);
    }
    m_panels[0]->setMinimumWidth(200);
    const int widths[7] = {0, 70, 100, 100, 130, 70, 70};
    for (int i = 1; i < 7; ++i)
        m_panels[i]->setMinimumWidth(widths[i]);
}

void frmMDI::buildDocks()
{
    setDockOptions(QMainWindow::AnimatedDocks);
    m_palette = new Objectbar(this);
    m_paletteDock = new QDockWidget(this);
    m_paletteDock->setObjectName(QStringLiteral("Palette"));
    m_paletteDock->setFeatures(QDockWidget::DockWidgetMovable);
    m_paletteDock->setTitleBarWidget(new QWidget(m_paletteDock));
    m_paletteDock->setWidget(m_palette);
    addDockWidget(Qt::LeftDockWidgetArea, m_paletteDock);
    resizeDocks({m_paletteDock}, {m_paletteWidth}, Qt::Horizontal);

    m_editbar = new Editbar(this);
    m_editDock = new QDockWidget(this);
    m_editDock->setObjectName(QStringLiteral("Editbar"));
    m_editDock->setFeatures(QDockWidget::DockWidgetMovable);
    m_editDock->setTitleBarWidget(new QWidget(m_editDock));
    m_editDock->setWidget(m_editbar);
    addDockWidget(Qt::RightDockWidgetArea, m_editDock);

    m_palette->Initilize();

    connect(m_palette, &Objectbar::BarDrag, this, [this](int16_t w) {
        m_paletteWidth = w;
        resizeDocks({m_paletteDock}, {int(w)}, Qt::Horizontal);
    });
    connect(m_palette, &Objectbar::BarDblClicked, this, [this] {
        // A double click folds the palette to its grip and back.
        const bool folded = m_palette->width() <= 16;
        const int w = folded ? std::max(m_paletteWidth, 120) : 8;
        if (!folded)
            m_paletteWidth = m_palette->width();
        resizeDocks({m_paletteDock}, {w}, Qt::Horizontal);
    });
    connect(m_palette, &Objectbar::ItemClicked, this, &frmMDI::Objectbar_ItemClicked);
    connect(m_palette, &Objectbar::ItemDrag, this,
            [this](int16_t item, int16_t x, int16_t y) { paletteDrag(item, x, y, false); });
    connect(m_palette, &Objectbar::ItemDropped, this,
            [this](int16_t item, int16_t x, int16_t y) { paletteDrag(item, x, y, true); });
    connect(m_palette, &Objectbar::PackDropped, this, &frmMDI::packDropped);

    connect(m_editbar, &Editbar::ChangeClicked, this, &frmMDI::Editbar_ChangeClicked);
    connect(m_editbar, &Editbar::PackClicked, this, [this] {
        if (!m_current)
            return;
        m_current->PackWrite();
        if (m_palette->CurrentPanel() == 6)
            m_palette->RefreshPacks();
    });
    connect(m_editbar, &Editbar::FlipClicked, this, [this](int16_t index) {
        if (m_current)
            m_current->SelectionFlip(index == 1);
    });
    connect(m_editbar, &Editbar::AngleChanged, this, [this](int16_t angle) {
        if (m_current)
            m_current->ObjectRotate(angle);
    });
    // A value typed and entered (or dropped with Escape) hands the keyboard back to the
    // layout, so Delete and the other keys act on the objects again.
    connect(m_editbar, &Editbar::EditDone, this, [this] {
        if (m_current)
            m_current->canvas()->setFocus(Qt::OtherFocusReason);
    });
    connect(m_editbar, &Editbar::WidthChanged, this, [this](int16_t width) {
        if (m_current && width >= 0 && width <= 255)
            m_current->ObjectWidth(uint8_t(width));
    });
}

// Every caption from the language table; run again after the language changes.
void frmMDI::setCaptions()
{
    static const char *const codes[5] = {"AU1 - ", "AU2 - ", "AU3 - ", "AU4 - ", "BL3 - "};
    const QList<QAction *> news = m_newMenu->actions();
    for (int i = 0; i < 5; ++i)
        news[i]->setText(QLatin1String(codes[i]) + Lang(25 + i));
    const QList<QAction *> saves = m_saveMenu->actions();
    for (int i = 0; i < 3; ++i)
        saves[i]->setText(Lang(55 + i));
    const QList<QAction *> zooms = m_zoomMenu->actions();
    for (int i = 0; i < 3; ++i)
        zooms[i]->setText(Lang(60 + i));

    // Captions where the button shows one; tool tips for the rest (entries 30.. as listed).
    const QHash<int, QString> texts{{1, Lang(30)},  {2, Lang(31)},  {3, Lang(32)}, {4, Lang(33)},
                                    {12, Lang(40)}, {13, Lang(41)}, {15, Lang(50)}};
    const QHash<int, QString> tips{{6, Lang(67) + QStringLiteral(" +")},
                                   {7, Lang(67) + QStringLiteral(" -")},
                                   {9, Lang(70) + QStringLiteral(" +")},
                                   {10, Lang(70) + QStringLiteral(" -")},
                                   {16, Lang(51)}};
    // Image-only buttons carry their text too, for the menus; tool tips name the keys.
    const auto tip = [](QAction *a, const QString &text) {
        const QString keys = a->shortcut().toString(QKeySequence::NativeText);
        a->setToolTip(keys.isEmpty() ? text : text + QStringLiteral(" (") + keys + QStringLiteral(")"));
    };
    for (int i = 0; i < m_buttons.size(); ++i) {
        const int number = i + 1;
        const QString text = texts.value(number, tips.value(number));
        if (!text.isEmpty()) {
            m_buttons[i]->setText(text);
            tip(m_buttons[i], QString(text).remove(QLatin1Char('&')));
        }
    }
    const QList<std::pair<QAction *, QString>> own{
        {m_undo, Lang(34)}, {m_redo, Lang(35)}, {m_toolSelect, QStringLiteral("Select")},
        {m_toolZoom, QStringLiteral("Zoom tool")}, {m_quit, QStringLiteral("Quit")}};
    for (const auto &[action, text] : own) {
        action->setText(text);
        tip(action, text);
    }
    m_toolSelect->setToolTip(QStringLiteral("Select (Esc leaves any other tool)"));
    static const char *const menuTitles[5] = {"&File", "&Edit", "&View", "&Tools", "&Help"};
    for (int i = 0; i < 5; ++i)
        m_menus[i]->setTitle(QLatin1String(menuTitles[i]));
    m_newMenu->setTitle(Lang(30));
    m_openMenu->setTitle(QStringLiteral("Open recent"));
    static const char *const editTexts[5] = {"Select all", "Copy", "Paste at the pointer", "Duplicate",
                                             "Delete"};
    for (int i = 0; i < m_editCommands.size(); ++i)
        m_editCommands[i]->setText(QLatin1String(editTexts[i]));
    m_lapsLabel->setText(Lang(65));
    m_welcome->setText(Lang(30) + QStringLiteral("  /  ") + Lang(31) + QStringLiteral("  (*.lyt)"));
    if (m_current)
        CurrentLayout_Updated();
}

QAction *frmMDI::toolAction(int button) const
{
    return button >= 1 && button <= m_buttons.size() ? m_buttons[button - 1] : nullptr;
}

QList<QAction *> frmMDI::toolButtons() const
{
    return {m_toolSelect, m_toolZoom, toolAction(12), toolAction(13)};
}

QString frmMDI::panelText(int panel) const
{
    return panel >= 1 && panel <= 7 ? m_panels[panel - 1]->text() : QString();
}

QString frmMDI::FormatPercent(double factor)
{
    // "###" shows no digit for zero, and rounds halves away from zero.
    const long long n = std::llround(factor * 100.0);
    return (n == 0 ? QString() : QString::number(n)) + QStringLiteral("%");
}

int frmMDI::LayoutCount() const
{
    return m_tabs->count();
}

frmLayout *frmMDI::layoutAt(int index) const
{
    return qobject_cast<frmLayout *>(m_tabs->widget(index));
}

void frmMDI::RecentAdd(const QString &fileName)
{
    m_recent.RecentAdd(fileName);
}

void frmMDI::RecentRemove(const QString &fileName)
{
    m_recent.RecentRemove(fileName);
}

void frmMDI::fillRecentMenu()
{
    m_openMenu->clear();
    const QStringList items = m_recent.items();
    for (int i = 0; i < items.size(); ++i) {
        QAction *a = m_openMenu->addAction(items[i]);
        a->setEnabled(!items[i].isEmpty());
        connect(a, &QAction::triggered, this, [this, i] { OpenRecent(i); });
    }
}

void frmMDI::closeEvent(QCloseEvent *event)
{
    // Every document may ask about its changes; one Cancel keeps the whole window.
    while (m_tabs->count() > 0) {
        if (!CloseLayout(layoutAt(m_tabs->currentIndex() >= 0 ? m_tabs->currentIndex() : 0))) {
            event->ignore();
            return;
        }
    }
    SaveOptions(m_recent.items());
    event->accept();
}
