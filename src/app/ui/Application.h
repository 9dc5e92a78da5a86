#pragma once

// The editor's entry point: start-up in its fixed order, then the event loop.
int VarnoMain(int argc, char *argv[]);

// The command line as one path: the arguments joined, every double quote removed.
class QStringList;
class QString;
QString CommandLinePath(const QStringList &arguments);
