#pragma once

#include <pthread.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "lipsyncapi/Service.h"
#include "tools/lipsyncctl/Failure.h"

namespace lipsyncctl {

/// A connection to the engine. A timeout, `stop`, or a signal caught by `catchInterrupts` ends a
/// call that waits. Use it from one thread at a time, except for `stop` and `waitingTime`. The
/// calls return nothing if they succeed.
class Connection {
public:
    using Service = velta::zub::lipsyncapi::Service;

    /// `timeout` is for each call; 0 means none.
    Connection(std::string socket, std::chrono::milliseconds timeout);
    ~Connection();

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
    void stop();

    /// How long the current call has been waiting; 0 if none is running. Any thread.
    std::chrono::duration<double> waitingTime();

private:
    enum class Phase { Idle, Connecting, Exchanging };

    template <typename Call>
    std::optional<Failure> run(Phase phase, const Call& call);
    std::optional<Failure> outcome(Phase phase, const Service::Result& result, bool wasEnded) const;
    void watch();
    bool mustEnd() const;
    void endCall();

    const std::string _socket;
    const std::chrono::milliseconds _timeout;
    Service _service;
    bool _isConnected = false;
    std::mutex _mutex; ///< For the members below.
    std::condition_variable _closing;
    Phase _phase = Phase::Idle;
    pthread_t _caller{};
    std::chrono::steady_clock::time_point _start;
    bool _wasEnded = false;
    bool _isStopped = false;
    bool _isClosing = false;
    std::thread _watchdog;
};

} // namespace lipsyncctl
