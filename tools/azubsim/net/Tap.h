#pragma once

#include <asio/io_context.hpp>
#include <memory>
#include <string>

#include "tools/azubsim/net/TapSession.h"

namespace azubsim {

/// Stands between clients and an engine: each client gets a connection of its own to the engine.
class Tap {
public:
    /// Throws a `tools::Error` if the engine's path cannot be an address.
    Tap(asio::io_context& io, std::string path, FaultPlan& faults, Reports& reports);

    /// Connects a client to the engine. If that is not possible, closes its socket. Leaves it open
    /// as long as the engine's queue is full.
    std::shared_ptr<Connection> serve(Socket& socket, int client);

private:
    /// Tells the user if connecting has started to fail or to succeed, or fails for another reason.
    void reportConnectState(const asio::error_code& error);

    asio::io_context& _io;
    const std::string _path;
    const Address _address;
    TapSession::Shared _shared;
    asio::error_code _lastError;
};

} // namespace azubsim
