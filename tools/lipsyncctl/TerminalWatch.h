#pragma once

#include <string>

#include "tools/lipsyncctl/Options.h"

namespace lipsyncctl {

/// Reads timestamps and shows them in a live view, until interrupted or until there are enough.
/// Returns the view's summary in `summary`, or false if standard output cannot show the view.
bool watchOnTerminal(const Options& options, std::string& summary);

} // namespace lipsyncctl
