#pragma once

#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>
#include <string>

#include "tools/azubsim/FaultPlan.h"
#include "tools/azubsim/Reports.h"
#include "tools/azubsim/Session.h"

namespace azubsim {

/// Stands between clients and an engine: each client gets a connection of its own to the engine.
class Tap {
public:
    using Address = asio::local::stream_protocol::endpoint;

    Tap(asio::io_context& io, std::string path, FaultPlan& faults, Reports& reports)
        : _io(io), _path(std::move(path)), _faults(faults), _reports(reports) {}

    /// Returns false, with the reason in `error`, if the engine's path cannot be an address.
    bool open(std::string& error);

    std::shared_ptr<Session> newSession(Connection::Socket socket, int client);

private:
    friend class TapSession;

    /// Tells the user if connecting has started to fail or to succeed, or fails for another reason.
    void tellChange(const asio::error_code& error);

    asio::io_context& _io;
    std::string _path;
    Address _address;
    FaultPlan& _faults;
    Reports& _reports;
    asio::error_code _lastError;
};

} // namespace azubsim
