#pragma once

#include <functional>
#include <memory>
#include <string>

#include "tools/azubsim/net/Session.h"

namespace azubsim {

/// What a client of the control socket gets before the answer to its command.
inline constexpr const char* accepted = "ok\n";
inline constexpr const char* refused = "refused\n";

/// The control socket that belongs to an engine's socket.
inline std::string controlPath(const std::string& socket) {
    return socket + ".control";
}

/// A client that sends one command in a line, and gets its answer and the end of the connection.
class ControlSession : public Session, public std::enable_shared_from_this<ControlSession> {
public:
    /// Carries a command out and returns its answer. Throws a `tools::Error`.
    using Execute = std::function<std::string(const std::string& line)>;

    ControlSession(Connection::Socket socket, Execute execute);

    void start() override;
    void close() override { _connection->close(); }

private:
    void received(std::string_view bytes);

    std::shared_ptr<Connection> _connection;
    Execute _execute;
    std::string _line;
};

} // namespace azubsim
