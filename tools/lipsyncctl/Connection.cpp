#include "tools/lipsyncctl/Connection.h"

#include <csignal>
#include <utility>

namespace lipsyncctl {

namespace {

// A signal with a handler, but without SA_RESTART, makes a blocked system call return.
void prepareWakeUpSignal() {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    sigaction(SIGUSR1, &action, nullptr);
}

} // namespace

Connection::Connection(std::string socket, std::chrono::milliseconds timeout)
    : _socket(std::move(socket)), _timeout(timeout) {
    prepareWakeUpSignal();
}

std::optional<Failure> Connection::connect() {
    auto failure = run(Phase::Connecting, [this] { return _service.connect(_socket); });
    if (failure && failure->code == Failure::Code::TransportError) {
        // The watchdog ended the call, but the socket may have connected at the last moment.
        _service.disconnect();
    }
    _isConnected = !failure;
    return failure;
}

std::optional<Failure> Connection::setMargin(unsigned long ms) {
    return run(Phase::Exchanging, [this, ms] { return _service.setAudioDelayMargin(ms); });
}

std::optional<Failure> Connection::getTimestamps(
    velta::zub::common::LipSyncNtpTimestamps& timestamps) {
    return run(Phase::Exchanging,
               [this, &timestamps] { return _service.getAudioTimestamps(timestamps); });
}

void Connection::disconnect() {
    _service.disconnect();
    _isConnected = false;
}

std::chrono::duration<double> Connection::waitingTime() const {
    const Watchdog::Time start = _start;
    return start == Watchdog::never ? Watchdog::Clock::duration::zero()
                                    : Watchdog::Clock::now() - start;
}

template <typename Call>
std::optional<Failure> Connection::run(Phase phase, const Call& call) {
    _phase = phase;
    _caller = pthread_self();
    const auto start = Watchdog::Clock::now();
    _start = start;
    const Service::Result result = [&] {
        const auto limit = _timeout.count() > 0 ? start + _timeout : Watchdog::never;
        const Watchdog::Deadline deadline(_watchdog, limit);
        return call();
    }();
    _start = Watchdog::never;
    if (_watchdog.ending() != Watchdog::Ending::Itself) {
        const bool isConnecting = phase == Phase::Connecting;
        const std::string what = isConnecting ? "no connection within " : "no answer within ";
        return Failure{Failure::Code::TransportError,
                       what + std::to_string(_timeout.count()) + " ms"};
    }
    if (result.isFailure()) {
        return Failure{result.code, result.format()};
    }
    return std::nullopt;
}

// `cancel` must not overlap `connect`, which blocks while the engine's queue of new connections is
// full.
void Connection::endCall() {
    if (_phase == Phase::Exchanging) {
        _service.cancel();
    } else {
        pthread_kill(_caller, SIGUSR1);
    }
}

} // namespace lipsyncctl
