#pragma once

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <list>
#include <memory>
#include <string>

#include "tools/azubsim/net/Session.h"
#include "tools/azubsim/net/SocketFile.h"

namespace azubsim {

/// Accepts clients and gives each one a session.
class Server {
public:
    Server(asio::io_context& io, std::string path, SessionFactory newSession);

    /// Accepts clients of everybody whom the umask allows, or only of this user. Throws a
    /// `tools::Error` if it cannot listen at the path.
    void listen(bool isPrivate = false);

    /// Closes all sessions, and removes the socket.
    void close();

    /// The clients that are connected.
    std::size_t clients();

    const SocketFile& file() const { return _file; }

private:
    void accept();
    void accepted(const asio::error_code& error, Connection::Socket socket);
    void removeEndedSessions();

    SocketFile _file;
    asio::steady_timer _pause;
    std::string _path;
    SessionFactory _newSession;
    std::list<std::weak_ptr<Session>> _sessions;
    int _lastClient = 0;
};

} // namespace azubsim
