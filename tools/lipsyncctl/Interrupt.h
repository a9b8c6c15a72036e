#pragma once

namespace lipsyncctl {

/// From now on SIGINT and SIGTERM do not end the process. They interrupt blocking system calls and
/// set `isInterrupted`.
void catchInterrupts();

/// Whether such a signal has arrived.
bool isInterrupted();

} // namespace lipsyncctl
