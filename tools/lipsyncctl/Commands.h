#pragma once

#include "tools/lipsyncctl/Options.h"

namespace lipsyncctl {

/// Runs the command. Returns the exit status: 0 for success, 1 if the engine or the connection
/// failed. Errors are printed to standard error.
int runCommand(const Options& options);

} // namespace lipsyncctl
