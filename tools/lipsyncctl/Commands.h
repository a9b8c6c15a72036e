#pragma once

#include "tools/lipsyncctl/Options.h"

namespace lipsyncctl {

/// Runs the command and prints its results and errors. Returns the exit status.
int runCommand(const Options& options);

} // namespace lipsyncctl
