#pragma once

#include "tools/lipsyncctl/Connection.h"
#include "tools/lipsyncctl/Output.h"

namespace lipsyncctl {

/// Measures this number of exchanges. Prints the figures even if a signal or a failure ends it
/// early. Returns the exit status.
int ping(Connection& connection, unsigned long exchanges, Output& output);

} // namespace lipsyncctl
