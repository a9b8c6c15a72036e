#include "tools/lipsyncctl/Interrupt.h"

#include <unistd.h>

#include <csignal>
#include <mutex>
#include <thread>
#include <utility>

#include "tools/common/Error.h"

namespace lipsyncctl {

namespace {

struct State {
    std::mutex mutex;
    std::function<void()> handler;
    int exitStatus = 0;
    bool isEnding = false;
    std::thread thread;
};

State state;

void waitForSignals(const sigset_t& signals) {
    constexpr int killedBySignal = 128;
    for (;;) {
        int number = 0;
        sigwait(&signals, &number);
        const std::lock_guard<std::mutex> lock(state.mutex);
        if (state.isEnding) {
            return;
        }
        // At the end of the time, output that is lost is a failure.
        state.exitStatus = number == SIGALRM ? tools::exitFailure : killedBySignal + number;
        if (!state.handler) {
            _exit(state.exitStatus);
        }
        state.handler();
    }
}

} // namespace

void takeInterrupts() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGINT, SIGTERM, SIGALRM}) {
        sigaddset(&signals, number);
    }
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    state.thread = std::thread([signals] { waitForSignals(signals); });
}

void leaveInterrupts() {
    {
        const std::lock_guard<std::mutex> lock(state.mutex);
        state.isEnding = true;
    }
    pthread_kill(state.thread.native_handle(), SIGALRM);
    state.thread.join();
}

void setInterruptHandler(std::function<void()> handler) {
    const std::lock_guard<std::mutex> lock(state.mutex);
    state.handler = std::move(handler);
}

int interruptStatus() {
    const std::lock_guard<std::mutex> lock(state.mutex);
    return state.exitStatus;
}

} // namespace lipsyncctl
