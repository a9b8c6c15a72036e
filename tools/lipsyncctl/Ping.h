#pragma once

#include "tools/lipsyncctl/Connection.h"
#include "tools/lipsyncctl/Output.h"

namespace lipsyncctl {

/// Measures this number of exchanges. Prints its figures also if it ends early because of a signal
/// or a failure. Returns the exit status.
int ping(Connection& connection, unsigned long exchanges, Output& output);

} // namespace lipsyncctl
