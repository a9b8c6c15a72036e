#pragma once

#include "tools/lipsyncctl/Options.h"
#include "tools/lipsyncctl/watch/Poller.h"
#include "tools/lipsyncctl/watch/Tally.h"

namespace lipsyncctl {

/// Shows the readings full-screen on the terminal, until the poller ends, a signal comes or the
/// user quits. Returns false if standard output cannot show the view.
bool watchOnTerminal(const Options& options, Poller& poller, Tally& tally);

} // namespace lipsyncctl
