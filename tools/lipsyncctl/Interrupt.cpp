#include "tools/lipsyncctl/Interrupt.h"

#include <unistd.h>

#include <utility>

#include "tools/common/Error.h"

namespace lipsyncctl {

Interrupt::Interrupt() {
    sigemptyset(&_signals);
    for (const int number : {SIGINT, SIGTERM, SIGALRM}) {
        sigaddset(&_signals, number);
    }
    pthread_sigmask(SIG_BLOCK, &_signals, nullptr);
    _thread = std::thread([this] { wait(); });
}

Interrupt::~Interrupt() {
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _isEnding = true;
    }
    pthread_kill(_thread.native_handle(), SIGTERM);
    _thread.join();
}

void Interrupt::setHandler(std::function<void()> handler) {
    const std::lock_guard<std::mutex> lock(_mutex);
    _handler = std::move(handler);
}

void Interrupt::wait() {
    constexpr int killedBySignal = 128;
    for (;;) {
        int number = 0;
        sigwait(&_signals, &number);
        const std::lock_guard<std::mutex> lock(_mutex);
        if (_isEnding) {
            return;
        }
        // At the end of the time, output that is lost is a failure.
        const int status = number == SIGALRM ? tools::exitFailure : killedBySignal + number;
        if (!_handler) {
            _exit(status);
        }
        _exitStatus = status;
        _handler();
    }
}

} // namespace lipsyncctl
