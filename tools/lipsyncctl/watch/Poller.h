#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>

#include "tools/lipsyncctl/Connection.h"
#include "tools/lipsyncctl/Options.h"
#include "tools/lipsyncctl/Reading.h"

namespace lipsyncctl {

/// Reads the timestamps again and again. Connects, and retries until the engine comes back.
class Poller {
public:
    explicit Poller(const Options& options);

    /// Passes each reading to `report`, until that returns false, the time in the options has
    /// passed, or `stop` is called.
    void run(const std::function<bool(const Reading&)>& report);

    /// Ends `run`, even if it waits for a silent engine. Any thread.
    void stop();

    /// Whether the time in the options has passed.
    bool isTimeUp() const { return Clock::now() >= _end; }

    /// How long the current call has been waiting; 0 if none is running. Any thread.
    std::chrono::duration<double> waitingTime() const { return _connection.waitingTime(); }

private:
    using Clock = std::chrono::steady_clock;

    bool pauseUntil(Clock::time_point time);

    const Clock::time_point _end;
    const std::chrono::milliseconds _interval;
    Connection _connection;
    std::mutex _mutex;
    std::condition_variable _stopped;
    bool _isStopped = false;
};

} // namespace lipsyncctl
