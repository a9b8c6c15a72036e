#pragma once

#include <sys/stat.h>

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>
#include <functional>
#include <list>
#include <memory>
#include <string>

#include "tools/azubsim/net/Connection.h"

namespace azubsim {

/// Sets the reply to `request`.
using Respond = std::function<void(Exchange&)>;

/// Answers the requests of a client until it leaves or a reply closes the connection.
std::shared_ptr<Connection> answerRequests(Socket socket, int client, const Respond& respond);

/// Listens at a Unix-domain socket and accepts clients.
class Server {
public:
    /// Takes over or closes the socket of a client with this number, and returns its connection if
    /// there is one. If it leaves the socket open, it is called again a little later, and all
    /// further clients wait until then.
    using Serve = std::function<std::shared_ptr<Connection>(Socket& socket, int client)>;

    Server(asio::io_context& io, std::string path, Serve serve);
    ~Server() { close(); }

    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    /// Accepts clients of everybody whom the umask allows, or only of this user. A stale socket at
    /// the path is replaced; anything else there is an error. Throws a `tools::Error`.
    void listen(bool isPrivate = false);

    bool isListening() const { return _acceptor.is_open(); }

    /// Closes all connections, and removes the socket.
    void close();

    /// Whether a path leads to this socket, also through a link or by another spelling.
    bool isAt(const std::string& path) const;

    /// The clients that have been accepted, and those that are connected.
    int accepted() const { return _accepted; }
    std::size_t connected();

private:
    void open(bool isPrivate);
    void removeStaleSocket();
    void accept();
    void serve();
    void tryAgain();

    const std::string _path;
    const Serve _serve;
    asio::local::stream_protocol::acceptor _acceptor;
    Socket _client; ///< That is not served yet.
    asio::steady_timer _pause;
    std::list<std::weak_ptr<Connection>> _connections;
    int _accepted = 0;
    struct stat _file {}; ///< All zero when it does not listen.
};

} // namespace azubsim
