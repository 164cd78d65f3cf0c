#ifndef KVTOOL_COMMANDS_H
#define KVTOOL_COMMANDS_H

#include <QStringList>

// Each command takes its arguments starting with its own name and returns the
// program's exit code; usage errors are thrown as Cli::UsageError.
int runCoord(const QStringList& arguments);
int runGsm(const QStringList& arguments);
int runJwt(const QStringList& arguments);
int runTour();

#endif
