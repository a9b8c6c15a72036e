#pragma once

#include "tools/lipsyncctl/Options.h"

namespace lipsyncctl {

/// Carries out what the options ask for. Returns the exit status: 0; 1 if the engine or the
/// connection failed, 2 for a margin that no engine takes, which is then said on standard error.
int runCommand(const Options& options);

} // namespace lipsyncctl
