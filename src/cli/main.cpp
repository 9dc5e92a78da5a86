// varno-cli: Varno's layout and pack tools on the command line, without a window.

#include "app/AppFolder.h"
#include "base/ConfigFile.h"
#include "base/Settings.h"
#include "cli/CliCommands.h"
#include "cli/CliDialogs.h"
#include "base/Runtime.h"
#include "imaging/ColorMatrix.h"
#include "imaging/cGDIP.h"

#include <QCoreApplication>
#include <cstdio>

int main(int argc, char *argv[])
{
    // Pictures are only drawn into memory, so no display and no platform plugin is needed.
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("varno-cli"));
    SetAppPath(ApplicationFolder(QCoreApplication::applicationDirPath()));
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
        return cli::run(QCoreApplication::arguments().mid(1));
    } catch (const rt::Error &e) {
        std::fprintf(stderr, "varno-cli: %s\n", qPrintable(e.message()));
    } catch (const std::exception &e) {
        std::fprintf(stderr, "varno-cli: %s\n", e.what());
    }
    return cli::Failure;
}
