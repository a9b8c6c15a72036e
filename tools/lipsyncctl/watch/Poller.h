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
    /// `options` must outlive it.
    explicit Poller(const Options& options)
        : _options(options),
          _end(options.maxSeconds > 0 ? Clock::now() + std::chrono::seconds(options.maxSeconds)
                                      : Connection::Watchdog::never),
          _connection(options.socket, std::chrono::milliseconds(options.timeoutMs), _end) {}

    /// Passes each reading to `report`, until the count or the time in the options is reached, or
    /// until `stop` is called.
    template <typename Report>
    void run(const Report& report) {
        const std::chrono::milliseconds interval(_options.intervalMs);
        constexpr std::chrono::milliseconds reconnectPause{300};
        auto due = Clock::now();
        while (pauseUntil(due)) {
            const Reading reading = read(_connection);
            // What ended with the watch is not reported.
            if (!pauseUntil(due)) {
                return;
            }
            report(reading);
            _count += reading.failure ? 0 : 1;
            if (_count == _options.readings && _count > 0) {
                return;
            }
            const auto now = Clock::now();
            // Without a connection, the interval does not count: the first reading after an outage
            // comes as soon as possible, and the next ones follow it at the interval.
            due = _connection.isConnected() ? std::max(due + interval, now) : now + reconnectPause;
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

    /// How many readings had figures. Not while `run` runs in another thread.
    unsigned long count() const { return _count; }

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

    const Options& _options;
    const Clock::time_point _end;
    unsigned long _count = 0;
    Connection _connection;
    std::mutex _mutex;
    std::condition_variable _stopped;
    bool _isStopped = false;
};

} // namespace lipsyncctl
