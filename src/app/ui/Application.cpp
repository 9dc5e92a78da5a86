#include "app/ui/Application.h"

#include "app/AppFolder.h"
#include "base/ConfigFile.h"
#include "base/ErrorLog.h"
#include "base/Settings.h"
#include "app/ui/QtDialogs.h"
#include "app/ui/frmMDI.h"
#include "app/ui/frmOptions.h"
#include "imaging/ColorMatrix.h"
#include "imaging/cBitmap.h"
#include "imaging/cGDIP.h"

#include <QApplication>
#include <QFileInfo>
#include <QGuiApplication>
#include <QIcon>
#include <QMessageBox>
#include <cstdio>
#include <memory>

#ifdef Q_OS_WIN
#include <windows.h>
#endif

namespace {

bool haveDisplay()
{
#if defined(Q_OS_LINUX) || defined(Q_OS_FREEBSD)
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    if (!platform.isEmpty())
        return true;
    return !qgetenv("DISPLAY").isEmpty() || !qgetenv("WAYLAND_DISPLAY").isEmpty();
#else
    return true;
#endif
}

} // namespace

QString WindowsCommandLinePath(const QString &line)
{
    // Skip the program name, quoted or not.
    qsizetype i = 0;
    if (line.startsWith(u'"')) {
        i = line.indexOf(u'"', 1);
        i = i < 0 ? line.size() : i + 1;
    } else {
        while (i < line.size() && line[i] != u' ' && line[i] != u'\t')
            ++i;
    }
    while (i < line.size() && (line[i] == u' ' || line[i] == u'\t'))
        ++i;
    QString path = line.mid(i);
    path.remove(u'"');
    return path;
}

QString CommandLinePath(const QStringList &arguments)
{
#ifdef Q_OS_WIN
    Q_UNUSED(arguments);
    return WindowsCommandLinePath(QString::fromWCharArray(GetCommandLineW()));
#else
    QString line = arguments.mid(1).join(u' ');
    line.remove(u'"');
    return line;
#endif
}

frmOptions *ShowFirstRunOptions(frmMDI &mdi)
{
    if (QFileInfo::exists(ConfigPath()))
        return nullptr;
    // Modeless, so that a layout can be looked at while the settings are chosen.
    frmOptions *dialog = OpenOptions(&mdi, [&mdi] { return mdi.recentFiles().items(); });
    QObject::connect(dialog, &frmOptions::optionsSaved, &mdi, &frmMDI::OptionsSaved);
    return dialog;
}

int VarnoMain(int argc, char *argv[])
{
    if (!haveDisplay()) {
        std::fprintf(stderr,
                     "Varno needs a graphical display, and none was found (DISPLAY and WAYLAND_DISPLAY are unset).\n"
                     "To run it without a screen, start it under a virtual one:  xvfb-run -a %s\n",
                     argc > 0 ? argv[0] : "Varno");
        return 2;
    }

    QApplication app(argc, argv);
    InitVarnoResources();
    QApplication::setApplicationName(QStringLiteral("Varno"));
    QApplication::setApplicationVersion(QStringLiteral(VARNO_VERSION));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/varno.png")));

    // The application folder, and the dialogs every part of the program reports through.
    SetAppPath(ApplicationFolder(QApplication::applicationDirPath()));
    QtDialogs qtDialogs;
    setDialogs(&qtDialogs);

    // The imaging session and the two shared image attributes come before anything draws.
    cGDIP gdip;
    highlightAttributes();
    ghostAttributes();

    // Reading the settings loads the language and hands over the recent files; the main
    // window is created on first use so that its captions come from the loaded language.
    std::unique_ptr<frmMDI> mdi;
    auto mainWindow = [&]() -> frmMDI & {
        if (!mdi) {
            mdi = std::make_unique<frmMDI>();
            qtDialogs.setParentWindow(mdi.get());
        }
        return *mdi;
    };
    try {
        GetOptions([&](const QString &path) { mainWindow().RecentAdd(path); });
    } catch (const rt::Error &e) {
        QMessageBox::critical(nullptr, QStringLiteral("Varno"),
                              QStringLiteral("Varno cannot start, because a setting in\n%1\ncannot be read.\n\n"
                                             "Run-time error '%2': %3\n\nCorrect or delete that line and start "
                                             "Varno again.")
                                  .arg(ConfigPath())
                                  .arg(e.number())
                                  .arg(e.description()));
        return 1;
    }

    mainWindow().show();

    const QString path = CommandLinePath(QApplication::arguments());
    if (!path.isEmpty())
        mainWindow().LayoutAdd(path);

    // A first run (no Varno.cfg yet) ends with the options, so the user can set things up.
    ShowFirstRunOptions(mainWindow());

    const int rc = QApplication::exec();
    setDialogs(nullptr);
    return rc;
}
