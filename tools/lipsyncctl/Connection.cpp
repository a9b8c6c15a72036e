#include "tools/lipsyncctl/Connection.h"

#include <algorithm>
#include <csignal>
#include <utility>

#include "tools/lipsyncctl/Failure.h"

namespace lipsyncctl {

Connection::Connection(std::string socket, std::chrono::milliseconds timeout, Watchdog::Time end)
    : _socket(std::move(socket)), _timeout(timeout), _end(end), _watchdog([this] { cancel(); }) {
    // A signal with a handler, but without SA_RESTART, makes a blocked system call return.
    struct sigaction action {};
    action.sa_handler = [](int) {};
    sigaction(SIGUSR1, &action, nullptr);
}

void Connection::connect() {
    run([this] { return _service.connect(_socket); });
    _isConnected = true;
}

void Connection::setMargin(unsigned long ms) {
    run([this, ms] { return _service.setAudioDelayMargin(ms); });
}

velta::zub::common::LipSyncNtpTimestamps Connection::getTimestamps() {
    velta::zub::common::LipSyncNtpTimestamps timestamps;
    run([this, &timestamps] { return _service.getAudioTimestamps(timestamps); });
    return timestamps;
}

std::chrono::duration<double> Connection::waitingTime() const {
    return std::max(Watchdog::Clock::now() - _start.load(), Watchdog::Clock::duration::zero());
}

template <typename Call>
void Connection::run(const Call& call) {
    _caller = pthread_self();
    const Watchdog::Time start = Watchdog::Clock::now();
    const Watchdog::Time end = _timeout.count() > 0 ? std::min(start + _timeout, _end) : _end;
    _start = start;
    const Service::Result result = [&] {
        const Watchdog::Deadline deadline(_watchdog, end);
        return call();
    }();
    _start = Watchdog::never;
    // The limit counts, even if the connection ended just after it, before it was cancelled.
    if (_watchdog.ending() != Watchdog::Ending::Itself ||
        (result.isFailure() && Watchdog::Clock::now() >= end)) {
        throwTimeout();
    }
    if (result.isFailure()) {
        const Failure failure(result.code, result.format());
        if (_isConnected && !failure.isRefusal()) {
            _service.disconnect();
            _isConnected = false;
        }
        throw Failure(failure);
    }
}

void Connection::throwTimeout() {
    const std::string what = _isConnected ? "no answer within " : "no connection within ";
    // It may have connected at the last moment.
    _service.disconnect();
    _isConnected = false;
    throw Failure::timeout(what + std::to_string(_timeout.count()) + " ms");
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
