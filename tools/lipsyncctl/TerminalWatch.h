#pragma once

#include "tools/lipsyncctl/Options.h"
#include "tools/lipsyncctl/Tally.h"

namespace lipsyncctl {

/// Reads timestamps and shows them in a live view, until interrupted or until there are enough.
/// Returns false if standard output cannot show the view.
bool watchOnTerminal(const Options& options, Tally& tally);

} // namespace lipsyncctl
