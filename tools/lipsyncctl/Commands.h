#pragma once

#include "tools/lipsyncctl/Connection.h"
#include "tools/lipsyncctl/Options.h"
#include "tools/lipsyncctl/Output.h"

namespace lipsyncctl {

/// Drops the library's log lines from now on, except for fatal ones. No other thread may use the
/// library or `stderr` yet.
void dropLog();

/// Measures this number of exchanges. Prints the figures even if a signal or a failure, which it
/// throws, ends it early.
void ping(Connection& connection, unsigned long exchanges, Output& output);

/// Reads timestamps until interrupted, or until the count or the time in the options is reached.
/// Shows a live view if the format is text and standard output is a terminal with a cursor that can
/// be moved, otherwise prints one line each. Throws a `Failure` if the time was too short.
void watchTimestamps(const Options& options, Output& output);

} // namespace lipsyncctl
