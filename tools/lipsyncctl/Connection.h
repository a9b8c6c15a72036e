#pragma once

#include <pthread.h>

#include <atomic>
#include <chrono>
#include <optional>
#include <string>

#include "avsync/Watchdog.h"
#include "lipsyncapi/Service.h"
#include "tools/lipsyncctl/Failure.h"

namespace lipsyncctl {

/// A connection to the engine. A timeout or `stop` ends a call that waits. Use it from one thread
/// at a time, except for `stop` and `waitingTime`. The calls return nothing if they succeed.
class Connection {
public:
    using Service = velta::zub::lipsyncapi::Service;

    /// `timeout` is for each call; 0 means none.
    Connection(std::string socket, std::chrono::milliseconds timeout);

    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    std::optional<Failure> connect();
    std::optional<Failure> setMargin(unsigned long ms);
    std::optional<Failure> getTimestamps(velta::zub::common::LipSyncNtpTimestamps& timestamps);

    void disconnect();
    bool isConnected() const { return _isConnected; }

    /// For the calls that do not wait for the engine.
    Service& service() { return _service; }

    /// Ends the call that is running, and every later one. Any thread.
    void stop() { _watchdog.stop(); }

    /// How long the current call has been waiting; 0 if none is running. Any thread.
    std::chrono::duration<double> waitingTime() const;

private:
    using Watchdog = velta::zub::avsync::Watchdog;
    enum class Phase { Connecting, Exchanging };

    template <typename Call>
    std::optional<Failure> run(Phase phase, const Call& call);
    void endCall();

    const std::string _socket;
    const std::chrono::milliseconds _timeout;
    Service _service;
    bool _isConnected = false;
    Phase _phase = Phase::Connecting; ///< Of the current call, with the next one.
    pthread_t _caller{};
    std::atomic<Watchdog::Time> _start{Watchdog::never}; ///< Of the current call.
    Watchdog _watchdog{[this] { endCall(); }};           // Last: it uses the others.
};

} // namespace lipsyncctl
