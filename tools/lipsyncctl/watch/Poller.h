#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>

#include "tools/lipsyncctl/Connection.h"
#include "tools/lipsyncctl/Options.h"
#include "tools/lipsyncctl/Reading.h"

namespace lipsyncctl {

/// Reads the timestamps again and again. Connects, and retries until the engine comes back.
class Poller {
public:
    explicit Poller(const Options& options)
        : _end(options.maxSeconds > 0 ? Clock::now() + std::chrono::seconds(options.maxSeconds)
                                      : Connection::Watchdog::never),
          _interval(options.intervalMs),
          _connection(options.socket, std::chrono::milliseconds(options.timeoutMs), _end) {}

    /// Passes each reading to `report`, until that returns false, the time in the options has
    /// passed, or `stop` is called.
    template <typename Report>
    void run(const Report& report) {
        constexpr std::chrono::milliseconds reconnectPause{300};
        auto due = Clock::now();
        while (pauseUntil(due)) {
            const Reading reading = read(_connection);
            // What ended with the watch is not reported.
            if (!pauseUntil(due) || !report(reading)) {
                return;
            }
            const auto now = Clock::now();
            // Without a connection, the interval does not count: the first reading after an outage
            // comes as soon as possible, and the next ones follow it at the interval.
            due = _connection.isConnected() ? std::max(due + _interval, now) : now + reconnectPause;
        }
    }

    /// Ends `run`, even if it waits for a silent engine. Any thread.
    void stop() {
        {
            const std::lock_guard<std::mutex> lock(_mutex);
            _isStopped = true;
        }
        _stopped.notify_all();
        _connection.stop();
    }

    /// Whether the time in the options has passed.
    bool isTimeUp() const { return Clock::now() >= _end; }

    /// How long the current call has been waiting; 0 if none is running. Any thread.
    double waitingSeconds() const { return _connection.waitingSeconds(); }

private:
    using Clock = std::chrono::steady_clock;

    // Returns false if the watch is over.
    bool pauseUntil(Clock::time_point time) {
        std::unique_lock<std::mutex> lock(_mutex);
        return !_stopped.wait_until(lock, std::min(time, _end), [this] { return _isStopped; }) &&
               !isTimeUp();
    }

    const Clock::time_point _end;
    const std::chrono::milliseconds _interval;
    Connection _connection;
    std::mutex _mutex;
    std::condition_variable _stopped;
    bool _isStopped = false;
};

} // namespace lipsyncctl
