#pragma once

#include "tools/lipsyncctl/Options.h"
#include "tools/lipsyncctl/Output.h"
#include "tools/lipsyncctl/watch/Poller.h"

namespace lipsyncctl {

/// Shows the readings full-screen on the terminal, until the poller ends, a signal comes or the
/// user quits, and then prints a summary. Returns false if standard output cannot show the view.
bool watchOnTerminal(const Options& options, Poller& poller, Output& output);

} // namespace lipsyncctl
