#pragma once

#include <asio/io_context.hpp>
#include <memory>
#include <string>
#include <utility>

#include "tools/azubsim/net/TapSession.h"
#include "tools/common/Text.h"

namespace azubsim {

/// Stands between clients and an engine: each client gets a connection of its own to the engine.
class Tap {
public:
    /// Throws a `tools::Error` if the engine's path cannot be an address.
    Tap(asio::io_context& io, const std::string& path, FaultPlan& faults, Reports& reports)
        : _io(io),
          _path(tools::printable(path)),
          _address(toAddress(path)),
          _shared{faults, reports} {}

    /// Connects a client to the engine. If that is not possible, closes its socket. Leaves it open
    /// as long as the engine's queue is full.
    std::shared_ptr<Connection> serve(Socket& socket, int client) {
        Socket engine(_io);
        const asio::error_code error = connectAtOnce(engine, _address);
        const bool mustWait = error == asio::error::try_again;
        if (!mustWait) {
            reportConnectState(error);
        }
        if (!error) {
            return std::make_shared<TapSession>(std::move(socket), std::move(engine), client,
                                                _shared)
                ->start();
        }
        if (!mustWait || hasHungUp(socket)) {
            socket.close();
        }
        return nullptr;
    }

private:
    /// Tells the user if connecting has started to fail or to succeed, or fails for another reason.
    void reportConnectState(const asio::error_code& error) {
        if (error == std::exchange(_lastError, error)) {
            return;
        }
        Screen& screen = _shared.reports.screen();
        if (error) {
            screen.warn("cannot connect to the engine at " + _path + ": " + error.message() +
                        "; clients are disconnected until it is back");
        } else {
            screen.say("azubsim: connected to the engine at " + _path);
        }
    }

    asio::io_context& _io;
    const std::string _path;
    const Address _address;
    TapSession::Shared _shared;
    asio::error_code _lastError;
};

} // namespace azubsim
