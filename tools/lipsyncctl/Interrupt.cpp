#include "tools/lipsyncctl/Interrupt.h"

#include <unistd.h>

#include <atomic>
#include <csignal>

#include "tools/common/Error.h"

namespace lipsyncctl {

namespace {

// Used by a signal handler and by several threads.
std::atomic<int> signalNumber{0};
std::atomic<bool> endsAtOnce{false};
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

void note(int number) {
    signalNumber = number;
    if (endsAtOnce) {
        // The rest of the output is lost, so the end of the time is a failure here.
        _exit(isTimeUp() ? tools::exitFailure : interruptStatus());
    }
}

} // namespace

void catchInterrupts() {
    // No SA_RESTART: a signal interrupts blocking calls.
    struct sigaction action {};
    action.sa_handler = note;
    for (const int number : {SIGINT, SIGTERM, SIGALRM}) {
        sigaction(number, &action, nullptr);
    }
}

bool isInterrupted() {
    return signalNumber != 0;
}

bool isTimeUp() {
    return signalNumber == SIGALRM;
}

int interruptStatus() {
    constexpr int killedBySignal = 128;
    return isInterrupted() && !isTimeUp() ? killedBySignal + signalNumber : 0;
}

EndsAtOnce::EndsAtOnce() {
    endsAtOnce = true;
}

EndsAtOnce::~EndsAtOnce() {
    endsAtOnce = false;
}

} // namespace lipsyncctl
