#pragma once

#include <QStringList>

// The editor's entry point: start-up in its fixed order, then the event loop.
int VarnoMain(int argc, char *argv[]);

// The command line as one path: the arguments joined, every double quote removed.
QString CommandLinePath(const QStringList &arguments);
