#pragma once

#include <pthread.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>

#include "avsync/Watchdog.h"
#include "lipsyncapi/Service.h"
#include "tools/common/Error.h"

namespace lipsyncctl {

/// A JSON object that keeps the order of its keys.
using Record = nlohmann::ordered_json;

/// Why a call to the engine failed.
class Failure : public tools::Error {
public:
    using Code = velta::zub::lipsyncapi::Service::ResultCode;

    Failure(Code code, const std::string& text, bool isTimeout = false)
        : Error(text, kindOf(code).exitStatus),
          _code(code),
          _kind(isTimeout ? "timeout" : kindOf(code).name) {}

    /// A time limit that was exceeded.
    static Failure timeout(const std::string& text) { return {Code::TransportError, text, true}; }

    bool isConnecting() const { return _code == Code::CannotConnect; }

    /// Whether the engine answered with an error; the connection is then still usable.
    bool isRefusal() const { return _code == Code::ServerError || _code == Code::NotInCall; }

    Record record() const {
        return {{"kind", _kind}, {"code", static_cast<int>(_code)}, {"text", what()}};
    }

private:
    struct Kind {
        const char* name;
        int exitStatus;
    };

    static Kind kindOf(Code code) {
        switch (code) {
            case Code::CannotConnect: return {"cannot-connect", 3};
            case Code::TransportError: return {"transport", 4};
            case Code::NotInCall: return {"not-in-call", 5};
            case Code::ServerError: return {"refused", 6};
            default: return {"other", tools::exitFailure};
        }
    }

    Code _code;
    const char* _kind;
};

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
