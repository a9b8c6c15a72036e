#pragma once

#include <pthread.h>

#include <atomic>
#include <chrono>
#include <string>

#include "avsync/Watchdog.h"
#include "lipsyncapi/Service.h"

namespace lipsyncctl {

/// A connection to the engine. A timeout or `stop` ends a call that waits. Use it from one thread
/// at a time, except for `stop` and `waitingTime`. A call that fails throws a `Failure`; if it is
/// no refusal, the connection is closed then.
class Connection {
public:
    using Service = velta::zub::lipsyncapi::Service;

    using Watchdog = velta::zub::avsync::Watchdog;

    /// `timeout` is for each call; 0 means none. `end` is for all of them.
    Connection(std::string socket, std::chrono::milliseconds timeout,
               Watchdog::Time end = Watchdog::never);

    void connect();
    void setMargin(unsigned long ms);
    velta::zub::common::LipSyncNtpTimestamps getTimestamps();

    bool isConnected() const { return _isConnected; }

    /// For the calls that do not wait for the engine.
    Service& service() { return _service; }

    /// Ends the call that is running, and every later one. Any thread.
    void stop() { _watchdog.stop(); }

    /// How long the current call has been waiting; 0 if none is running. Any thread.
    std::chrono::duration<double> waitingTime() const;

private:
    template <typename Call>
    void run(const Call& call);
    void throwTimeout();
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
