#pragma once

namespace lipsyncctl {

/// From now on SIGINT and SIGTERM do not end the process but are noted. A second one ends it.
void catchInterrupts();

/// Whether such a signal has arrived.
bool isInterrupted();

} // namespace lipsyncctl
