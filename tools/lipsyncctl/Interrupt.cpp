#include "tools/lipsyncctl/Interrupt.h"

#include <atomic>
#include <csignal>

namespace lipsyncctl {

namespace {

// Set by a signal handler and read by several threads.
std::atomic<bool> hasSignal{false};
static_assert(std::atomic<bool>::is_always_lock_free);

void note(int) {
    hasSignal = true;
}

} // namespace

void catchInterrupts() {
    // No SA_RESTART: a signal interrupts blocking calls, for example a write to a full pipe.
    struct sigaction action {};
    action.sa_handler = note;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

bool isInterrupted() {
    return hasSignal;
}

} // namespace lipsyncctl
