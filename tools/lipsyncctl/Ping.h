#pragma once

#include "tools/lipsyncctl/Connection.h"
#include "tools/lipsyncctl/Interrupt.h"
#include "tools/lipsyncctl/Output.h"

namespace lipsyncctl {

/// Measures this number of exchanges. Prints the figures even if a signal or a failure, which it
/// throws, ends it early.
void ping(Connection& connection, unsigned long exchanges, Output& output, Interrupt& interrupt);

} // namespace lipsyncctl
