#pragma once

namespace lipsyncctl {

/// From now on the first SIGINT or SIGTERM is only noted; a second one ends the process.
void catchInterrupts();

/// Whether such a signal has arrived.
bool isInterrupted();

} // namespace lipsyncctl
