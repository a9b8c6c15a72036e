#include "tools/lipsyncctl/Connection.h"

#include <algorithm>
#include <csignal>
#include <utility>

namespace lipsyncctl {

Connection::Connection(std::string socket, std::chrono::milliseconds timeout, Watchdog::Time end)
    : _socket(std::move(socket)), _timeout(timeout), _end(end), _watchdog([this] { cancel(); }) {
    // A signal with a handler, but without SA_RESTART, makes a blocked system call return.
    struct sigaction action {};
    action.sa_handler = [](int) {};
    sigaction(SIGUSR1, &action, nullptr);
}

void Connection::connect() {
    run([this](Service& service) { return service.connect(_socket); });
    _isConnected = true;
}

double Connection::waitingSeconds() const {
    const std::chrono::duration<double> time = Watchdog::Clock::now() - _start.load();
    return std::max(time.count(), 0.0);
}

void Connection::run(const std::function<Service::Result(Service&)>& call) {
    _caller = pthread_self();
    const Watchdog::Time start = Watchdog::Clock::now();
    const Watchdog::Time end = _timeout.count() > 0 ? std::min(start + _timeout, _end) : _end;
    _start = start;
    const Service::Result result = [&] {
        const Watchdog::Deadline deadline(_watchdog, end);
        return call(_service);
    }();
    _start = Watchdog::never;
    // The limit counts, even if the connection ended just after it, before it was cancelled.
    const bool isTimeout = _watchdog.ending() != Watchdog::Ending::Itself ||
                           (result.isFailure() && Watchdog::Clock::now() >= end);
    if (!isTimeout && result.isSuccess()) {
        return;
    }
    const Failure failure =
        isTimeout
            ? Failure::timeout((_isConnected ? "no answer within " : "no connection within ") +
                               std::to_string(_timeout.count()) + " ms")
            : Failure(result.code, result.format());
    // It may have connected just after the limit.
    if (isTimeout || (_isConnected && !failure.isRefusal())) {
        _service.disconnect();
        _isConnected = false;
    }
    throw Failure(failure);
}

void Connection::cancel() {
    if (_isConnected) {
        _service.cancel();
    } else {
        // `cancel` must not overlap `connect`, which blocks while the engine's queue of new
        // connections is full.
        pthread_kill(_caller, SIGUSR1);
    }
}

} // namespace lipsyncctl
