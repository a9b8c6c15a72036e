#pragma once

#include <functional>

namespace lipsyncctl {

/// From now on a thread takes SIGINT, SIGTERM and SIGALRM. They end the process at once, even if it
/// waits for ever in a write, or call a function instead. Call this before other threads start,
/// because threads inherit which signals they block.
void takeInterrupts();

/// Ends that thread. The signals stay blocked.
void leaveInterrupts();

/// From now on a signal calls this function in the thread, or ends the process if it is null.
void setInterruptHandler(std::function<void()> handler);

/// The exit status that tells of the signal that called a function; 0 if none has.
int interruptStatus();

} // namespace lipsyncctl
