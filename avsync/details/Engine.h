#pragma once

#include <chrono>
#include <mutex>
#include <string>

#include "avsync/ExchangeLock.h"
#include "avsync/Watchdog.h"
#include "avsync/details/SyncState.h"
#include "lipsyncapi/Service.h"

namespace velta::zub::avsync::details {

/// The connection of a `LipSync`: each exchange has a deadline and holds the lock.
class Engine {
public:
    using Timestamps = common::LipSyncNtpTimestamps;

    enum class Answer {
        Success,
        NotInCall,
        Refused,
        Busy, ///< Nothing was sent, because an exchange of another object took too long.
        None, ///< The connection is of no more use.
    };

    Engine(std::string socket, std::chrono::milliseconds deadline, SyncState& state)
        : _socket(std::move(socket)), _deadline(deadline), _state(state) {}

    bool isConnected() const { return _isConnected; }

    /// Why the last call failed; empty if it succeeded.
    const std::string& message() const { return _message; }

    /// Blocks as long as the engine does not accept the connection.
    bool connect() {
        _state.setConnecting(true);
        const Service::Result result = _service.connect(_socket);
        _state.setConnecting(false);
        _isConnected = result.isSuccess();
        setMessage(result);
        return _isConnected;
    }

    /// Needs no memory.
    void disconnect() {
        _state.setConnecting(false);
        if (_isConnected) {
            _isConnected = false;
            _service.disconnect();
        }
    }

    Answer setMargin(unsigned long ms) {
        return exchange([&] { return _service.setAudioDelayMargin(ms); });
    }

    Answer getTimestamps(Timestamps& timestamps) {
        return exchange([&] { return _service.getAudioTimestamps(timestamps); });
    }

private:
    using Service = lipsyncapi::Service;
    using Code = Service::ResultCode;

    template <typename Call>
    Answer exchange(const Call& call) {
        const std::unique_lock<ExchangeMutex> lock(exchangeLock(), _state.limit());
        const auto limit = _state.limit(); // The engine has no part in the wait for the lock.
        if (!lock.owns_lock() || limit <= std::chrono::steady_clock::now()) {
            _message = "An exchange with another engine takes too long";
            return Answer::Busy;
        }
        Service::Result result = [&] {
            const Watchdog::Deadline deadline(_watchdog, limit);
            return call();
        }();
        // Even if the answer came at the last moment, the connection is closed.
        if (_watchdog.ending() != Watchdog::Ending::Itself) {
            result = Code::TransportError;
            result.message = "no answer within " + std::to_string(_deadline.count()) + " ms";
        }
        setMessage(result);
        return answer(result.code);
    }

    static Answer answer(Code code) {
        if (code == Code::Success) {
            return Answer::Success;
        }
        if (code == Code::NotInCall) {
            return Answer::NotInCall;
        }
        return code == Code::ServerError ? Answer::Refused : Answer::None;
    }

    void setMessage(const Service::Result& result) {
        _message = result.isSuccess() ? std::string() : result.format();
    }

    const std::string _socket;
    const std::chrono::milliseconds _deadline;
    SyncState& _state;
    Service _service;
    Watchdog _watchdog{[this] { _service.cancel(); }}; // After the service that it cancels.
    bool _isConnected = false;
    std::string _message;
};

} // namespace velta::zub::avsync::details
