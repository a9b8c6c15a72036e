#pragma once

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>
#include <deque>
#include <memory>
#include <string>

#include "tools/azubsim/engine/FaultPlan.h"
#include "tools/azubsim/net/Session.h"
#include "tools/azubsim/net/SocketFile.h"
#include "tools/azubsim/report/Reports.h"

namespace azubsim {

class TapSession;

/// Stands between clients and an engine: each client gets a connection of its own to the engine.
///
/// A tap names itself and the taps before it as the address of its side of that connection, so that
/// a tap that finds itself among them can cut the ring.
class Tap {
public:
    /// Throws a `tools::Error` if the engine's path cannot be an address.
    Tap(asio::io_context& io, std::string path, FaultPlan& faults, Reports& reports);

    /// Null if the client is a tap that gets its clients from this one.
    std::shared_ptr<Session> newSession(Connection::Socket socket, int client);

private:
    friend class TapSession;

    /// Connects the session to the engine, as soon as the engine's queue has room.
    void connect(const std::shared_ptr<TapSession>& session);
    void connectWaiting();

    /// Tells the user if connecting has started to fail or to succeed, or fails for another reason.
    void reportConnectState(const asio::error_code& error);

    asio::io_context& _io;
    std::string _path;
    Address _address;
    FaultPlan& _faults;
    Reports& _reports;
    std::string _name; ///< Differs from that of every other tap.
    unsigned long _connections = 0;
    bool _hasCutRing = false;
    std::deque<std::weak_ptr<TapSession>> _waiting;
    asio::steady_timer _retry;
    asio::error_code _lastError;
    std::size_t _kept = 0; ///< Bytes that the sessions keep of unfinished exchanges.
};

} // namespace azubsim
