#pragma once

#include <pthread.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <string>

#include "avsync/Watchdog.h"
#include "lipsyncapi/Service.h"

namespace lipsyncctl {

/// A connection to the engine. A timeout or `stop` ends a call that waits. Use it from one thread
/// at a time, except for `stop` and `waitingSeconds`.
class Connection {
public:
    using Service = velta::zub::lipsyncapi::Service;
    using Watchdog = velta::zub::avsync::Watchdog;

    /// `timeout` is for each call; 0 means none. `end` is for all of them.
    Connection(std::string socket, std::chrono::milliseconds timeout,
               Watchdog::Time end = Watchdog::never);

    /// Throws a `Failure`.
    void connect();

    /// Makes a call that may wait for the engine. Throws a `Failure`; if it is no refusal, the
    /// connection is closed then.
    void run(const std::function<Service::Result(Service&)>& call);

    bool isConnected() const { return _isConnected; }

    /// Ends the call that is running, and every later one. Any thread.
    void stop() { _watchdog.stop(); }

    /// How long the current call has been waiting; 0 if none is running. Any thread.
    double waitingSeconds() const;

private:
    void cancel();

    const std::string _socket;
    const std::chrono::milliseconds _timeout;
    const Watchdog::Time _end;
    Service _service;
    bool _isConnected = false;
    pthread_t _caller{};
    std::atomic<Watchdog::Time> _start{Watchdog::never}; ///< Of the current call.
    Watchdog _watchdog;                                  ///< Last: its thread uses the others.
};

} // namespace lipsyncctl
