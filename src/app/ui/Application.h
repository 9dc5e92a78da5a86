#pragma once

#include <QStringList>

class frmMDI;
class frmOptions;

// The editor's entry point: start-up in its fixed order, then the event loop.
int VarnoMain(int argc, char *argv[]);

// The command line as one path: the arguments joined, every double quote removed.
QString CommandLinePath(const QStringList &arguments);

// On a first run (no Varno.cfg yet) the options dialog, shown without blocking the main
// window and freed when it closes; nullptr when Varno.cfg exists.
frmOptions *ShowFirstRunOptions(frmMDI &mdi);
