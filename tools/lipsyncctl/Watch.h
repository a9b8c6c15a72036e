#pragma once

#include "tools/lipsyncctl/Options.h"

namespace lipsyncctl {

/// Reads timestamps until an interrupt, or as many as the options say: in a live view if standard
/// output is a terminal and the format is text, else a line each.
void watchTimestamps(const Options& options);

} // namespace lipsyncctl
