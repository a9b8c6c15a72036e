#pragma once

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <list>
#include <memory>
#include <string>

#include "tools/azubsim/Session.h"
#include "tools/azubsim/SocketFile.h"

namespace azubsim {

/// Accepts clients and gives each one a session.
class Server {
public:
    Server(asio::io_context& io, std::string path, SessionFactory newSession);

    /// Returns false, with the reason in `error`, if it cannot listen at the path.
    bool listen(std::string& error);

    /// Closes all sessions, and removes the socket.
    void close();

    /// The clients that are connected.
    std::size_t clients();

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
