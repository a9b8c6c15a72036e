#pragma once

#include "tools/lipsyncctl/Options.h"

namespace lipsyncctl {

/// Runs the command and prints its results. Returns the exit status, or throws an `Error`.
int runCommand(const Options& options);

} // namespace lipsyncctl
