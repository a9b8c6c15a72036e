#pragma once

namespace lipsyncctl {

/// From now on SIGINT, SIGTERM and SIGALRM do not end the process. They interrupt blocking system
/// calls and set `isInterrupted`.
void catchInterrupts();

/// Whether such a signal has arrived.
bool isInterrupted();

/// Whether it was SIGALRM.
bool isTimeUp();

/// The exit status that tells of the signal; 0 for SIGALRM and if none has arrived.
int interruptStatus();

/// While it exists, such a signal ends the process at once. For output that may block for ever.
class EndsAtOnce {
public:
    EndsAtOnce();
    ~EndsAtOnce();

    EndsAtOnce(const EndsAtOnce&) = delete;
    EndsAtOnce& operator=(const EndsAtOnce&) = delete;
};

} // namespace lipsyncctl
