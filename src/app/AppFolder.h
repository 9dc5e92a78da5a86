#pragma once
// Which folder is the application folder, for a build and for an installed copy.

#include <QString>

// The application folder for an executable that lives in exeFolder.
//
// A build keeps everything beside its executable (build/bin/), so its folder is its own.
// An installed copy lives in a system folder (installedBinFolder, such as /usr/bin) that
// an ordinary user cannot write to, yet Varno writes Varno.cfg, Varno.log, packs and
// layouts into its application folder and reads objects/, backgrounds/ and lang/ from it.
// So an installed copy works from the user's own folder, $XDG_DATA_HOME/varno
// (~/.local/share/varno), which it first fills with the data in shippedData.
//
// The choice follows the executable's real folder. Linking the program into the user's
// folder would not move it, because the running program's folder comes from
// /proc/self/exe, which resolves links; and an environment variable set by a launcher
// would follow the user into a build they then start by hand.
// An empty installedBinFolder (Windows, where the installer puts Varno in a folder the
// user owns) always gives exeFolder.
QString ApplicationFolder(const QString &exeFolder, const QString &installedBinFolder,
                          const QString &shippedData);

// The same for this executable, with the install locations the build was configured for.
QString ApplicationFolder(const QString &exeFolder);
