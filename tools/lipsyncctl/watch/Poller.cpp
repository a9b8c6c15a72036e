#include "tools/lipsyncctl/watch/Poller.h"

#include <algorithm>

namespace lipsyncctl {

Poller::Poller(const Options& options)
    : _end(options.maxSeconds > 0 ? Clock::now() + std::chrono::seconds(options.maxSeconds)
                                  : Connection::Watchdog::never),
      _interval(options.intervalMs),
      _connection(options.socket, std::chrono::milliseconds(options.timeoutMs), _end) {}

void Poller::run(const std::function<bool(const Reading&)>& report) {
    constexpr std::chrono::milliseconds reconnectPause{300};
    auto due = Clock::now();
    while (pauseUntil(due)) {
        const Reading reading = read(_connection);
        // What ended with the watch is not reported.
        if (!pauseUntil(Clock::now()) || !report(reading)) {
            return;
        }
        const auto now = Clock::now();
        // Without a connection, the interval does not count: the first reading after an outage
        // comes as soon as possible, and the next ones follow it at the interval.
        due = _connection.isConnected() ? std::max(due + _interval, now) : now + reconnectPause;
    }
}

void Poller::stop() {
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _isStopped = true;
    }
    _stopped.notify_all();
    _connection.stop();
}

// Returns false if the watch is over.
bool Poller::pauseUntil(Clock::time_point time) {
    std::unique_lock<std::mutex> lock(_mutex);
    return !_stopped.wait_until(lock, std::min(time, _end), [this] { return _isStopped; }) &&
           !isTimeUp();
}

} // namespace lipsyncctl
