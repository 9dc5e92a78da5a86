#pragma once

#include <QStringList>

class frmMDI;
class frmOptions;

// The editor's entry point: start-up in its fixed order, then the event loop.
int VarnoMain(int argc, char *argv[]);

// The command line as one path: the arguments joined, every double quote removed.
// On Windows the arguments are ignored and the process's own command line is read, so
// that a path with blanks the shell did not quote still arrives whole.
QString CommandLinePath(const QStringList &arguments);
// The same for a raw Windows command line: what follows the program name (quoted or not).
QString WindowsCommandLinePath(const QString &commandLine);

// On a first run (no Varno.cfg yet) the options dialog, shown without blocking the main
// window and freed when it closes; nullptr when Varno.cfg exists.
frmOptions *ShowFirstRunOptions(frmMDI &mdi);
