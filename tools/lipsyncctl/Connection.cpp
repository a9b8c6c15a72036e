#include "tools/lipsyncctl/Connection.h"

#include <algorithm>
#include <csignal>
#include <utility>

#include "tools/lipsyncctl/Interrupt.h"

namespace lipsyncctl {

namespace {

using std::chrono::milliseconds;

// How often the watchdog looks at the running call. It is not woken for each call, because that
// would lengthen the exchanges that `ping` measures.
milliseconds tick(milliseconds timeout) {
    constexpr milliseconds longest{50};
    return timeout.count() == 0 ? longest : std::clamp(timeout / 10, milliseconds(1), longest);
}

// A signal with a handler, but without SA_RESTART, makes a blocked system call return.
void prepareWakeUpSignal() {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    sigaction(SIGUSR1, &action, nullptr);
}

} // namespace

Connection::Connection(std::string socket, milliseconds timeout)
    : _socket(std::move(socket)), _timeout(timeout) {
    prepareWakeUpSignal();
    _watchdog = std::thread([this] { watch(); });
}

Connection::~Connection() {
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _isClosing = true;
    }
    _closing.notify_all();
    _watchdog.join();
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

void Connection::stop() {
    const std::lock_guard<std::mutex> lock(_mutex);
    _isStopped = true;
}

std::chrono::duration<double> Connection::waitingTime() {
    const std::lock_guard<std::mutex> lock(_mutex);
    if (_phase == Phase::Idle) {
        return std::chrono::duration<double>::zero();
    }
    return std::chrono::steady_clock::now() - _start;
}

template <typename Call>
std::optional<Failure> Connection::run(Phase phase, const Call& call) {
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _phase = phase;
        _caller = pthread_self();
        _start = std::chrono::steady_clock::now();
    }
    const Service::Result result = call();
    const std::lock_guard<std::mutex> lock(_mutex);
    _phase = Phase::Idle;
    return outcome(phase, result, std::exchange(_wasEnded, false));
}

std::optional<Failure> Connection::outcome(Phase phase, const Service::Result& result,
                                           bool wasEnded) const {
    if (wasEnded) {
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

void Connection::watch() {
    std::unique_lock<std::mutex> lock(_mutex);
    while (!_closing.wait_for(lock, tick(_timeout), [this] { return _isClosing; })) {
        if (_phase != Phase::Idle && mustEnd()) {
            endCall();
        }
    }
}

bool Connection::mustEnd() const {
    const auto elapsed = std::chrono::steady_clock::now() - _start;
    return _isStopped || isInterrupted() || (_timeout.count() > 0 && elapsed >= _timeout);
}

// Repeated until the call has returned: a signal that arrives just before the system call blocks
// has no effect.
void Connection::endCall() {
    _wasEnded = true;
    if (_phase == Phase::Exchanging) {
        _service.cancel();
    } else {
        // `cancel` must not overlap `connect`, which blocks while the engine's queue of new
        // connections is full.
        pthread_kill(_caller, SIGUSR1);
    }
}

} // namespace lipsyncctl
