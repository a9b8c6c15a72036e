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

/// Polls the timestamps in a separate thread, because a silent engine blocks its caller. Connects,
/// and retries until the engine comes back.
class Poller {
public:
    /// A reading, or why there is none.
    struct Event {
        std::optional<Reading> reading;
        Failure failure;
    };

    Poller(std::string socket, std::chrono::milliseconds interval);
    ~Poller();

    Poller(const Poller&) = delete;
    Poller& operator=(const Poller&) = delete;

    /// Waits for the next event; returns nothing after the timeout.
    std::optional<Event> next(std::chrono::milliseconds timeout);

    /// Stops the thread, even if it waits for a silent engine.
    void stop();

private:
    using Service = velta::zub::lipsyncapi::Service;

    void poll();
    Event readOnce(Service& service, bool& isConnected);
    Service::Result exchange(Service& service, Reading& reading);
    void report(Event event);
    bool pause(std::chrono::nanoseconds time);

    std::string _socket;
    std::chrono::milliseconds _interval;
    std::mutex _mutex;
    std::condition_variable _changed;
    std::deque<Event> _events;
    bool _isStopping = false;
    Service* _exchanging = nullptr; ///< Set during an exchange, which may then be cancelled.
    std::thread _thread;
};

} // namespace lipsyncctl
