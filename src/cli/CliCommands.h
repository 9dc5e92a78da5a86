#pragma once
// The commands of varno-cli. Each returns the process exit status: 0 on success, 1 when
// a file could not be opened or an error was logged, 2 for a usage error.

#include <QStringList>

namespace cli {

enum ExitCode { Success = 0, Failure = 1, UsageError = 2 };

QString usage();
// Runs the command line (arguments without the program name).
int run(const QStringList &arguments);

int info(const QString &file, bool json);
int resave(const QString &in, const QString &out);
int packInfo(const QString &file, bool json);
// render FILE.lyt -o OUT [--percent P | --width W | --height H] [--quality Q]
int render(const QStringList &args);

} // namespace cli
