#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>
#include <variant>

#include "tools/lipsyncctl/Connection.h"
#include "tools/lipsyncctl/Options.h"
#include "tools/lipsyncctl/Reading.h"

namespace lipsyncctl {

/// Polls the timestamps in a separate thread, because a silent engine blocks its caller. Connects,
/// and retries until the engine comes back.
class Poller {
public:
    /// A reading, or why there is none.
    using Event = std::variant<Reading, Failure>;

    /// How long a loop waits for an event before it looks for a signal or a key.
    static constexpr std::chrono::milliseconds patience{100};

    explicit Poller(const Options& options);
    /// Stops the thread, even if it waits for a silent engine.
    ~Poller();

    Poller(const Poller&) = delete;
    Poller& operator=(const Poller&) = delete;

    /// Waits for the next event; returns nothing after the timeout.
    std::optional<Event> next(std::chrono::milliseconds timeout);

    /// How long the current call has been waiting; 0 if none is running.
    std::chrono::duration<double> waitingTime() { return _connection.waitingTime(); }

private:
    void poll();
    Event readOnce();
    void report(Event event);
    Event takeOldest();
    bool pauseUntil(std::chrono::steady_clock::time_point time);

    const std::chrono::milliseconds _interval;
    Connection _connection;
    std::mutex _mutex;
    std::condition_variable _changed;
    std::deque<Event> _events;
    std::size_t _bytes = 0; ///< Of the events.
    bool _isStopping = false;
    std::thread _thread;
};

} // namespace lipsyncctl
