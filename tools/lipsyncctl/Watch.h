#pragma once

#include "tools/lipsyncctl/Options.h"

namespace lipsyncctl {

/// Reads timestamps until interrupted or until the count in the options is reached. Shows a live
/// view if standard output is a terminal and the format is text, otherwise prints one line each.
void watchTimestamps(const Options& options);

} // namespace lipsyncctl
