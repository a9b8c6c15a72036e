#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "lipsyncapi/Service.h"
#include "tools/lipsyncctl/Reading.h"

namespace lipsyncctl {

/// Reads timestamps again and again in a thread of its own, because an engine that stays silent
/// blocks a reader for ever. Connects, and connects again when the engine comes back.
class Poller {
public:
    /// A reading, or why there is none.
    struct Event {
        std::optional<Reading> reading;
        std::string failure; ///< In words for the user.
    };

    Poller(std::string socket, std::chrono::milliseconds interval);
    ~Poller();

    Poller(const Poller&) = delete;
    Poller& operator=(const Poller&) = delete;

    /// The next event, if there is one within this time.
    std::optional<Event> next(std::chrono::milliseconds timeout);

    /// Ends the thread. False if it cannot be ended, because it waits for an engine that is
    /// silent: then the process has to end without it.
    bool stop();

private:
    void run();
    void poll();
    Event readOnce(velta::zub::lipsyncapi::Service& service, bool& isConnected) const;
    void report(Event event);
    bool pause(std::chrono::nanoseconds time);

    std::string _socket;
    std::chrono::milliseconds _interval;
    std::mutex _mutex;
    std::condition_variable _changed;
    std::deque<Event> _events;
    bool _isStopping = false;
    bool _hasStopped = false;
    std::thread _thread;
};

} // namespace lipsyncctl
