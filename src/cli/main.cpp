// varno-cli: Varno's layout and pack tools on the command line, without a window.

#include "app/Config.h"
#include "app/Startup.h"
#include "cli/CliCommands.h"
#include "cli/CliDialogs.h"
#include "core/Runtime.h"
#include "imaging/ColorMatrix.h"
#include "imaging/cGDIP.h"

#include <QGuiApplication>
#include <cstdio>

int main(int argc, char *argv[])
{
    // Pictures are drawn in memory only; no display is ever needed.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("varno-cli"));
    SetAppPath(QGuiApplication::applicationDirPath());
    setDialogs(&CliDialogs::instance());

    cGDIP gdip;
    highlightAttributes();
    ghostAttributes();
    try {
        GetOptions();
    } catch (const rt::Error &e) {
        std::fprintf(stderr, "varno-cli: a setting in %s cannot be read: %s\n", qPrintable(ConfigPath()),
                     qPrintable(e.message()));
        return cli::Failure;
    }
    try {
        return cli::run(QGuiApplication::arguments().mid(1));
    } catch (const rt::Error &e) {
        std::fprintf(stderr, "varno-cli: %s\n", qPrintable(e.message()));
    } catch (const std::exception &e) {
        std::fprintf(stderr, "varno-cli: %s\n", e.what());
    }
    return cli::Failure;
}
