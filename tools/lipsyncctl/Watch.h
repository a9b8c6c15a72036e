#pragma once

#include "tools/lipsyncctl/Options.h"

namespace lipsyncctl {

/// Reads timestamps until interrupted or until the count in the options is reached. Shows a live
/// view if the format is text and standard output is a terminal with a cursor that can be moved,
/// otherwise prints one line each. Returns the exit status.
int watchTimestamps(const Options& options);

} // namespace lipsyncctl
