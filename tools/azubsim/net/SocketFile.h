#pragma once

#include <sys/stat.h>

#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>
#include <string>

namespace azubsim {

using Address = asio::local::stream_protocol::endpoint;

/// A listening Unix-domain socket and its file. `close` and the destructor remove both.
class SocketFile {
public:
    using Acceptor = asio::local::stream_protocol::acceptor;

    explicit SocketFile(asio::io_context& io) : _acceptor(io) {}
    ~SocketFile() { close(); }

    SocketFile(const SocketFile&) = delete;
    SocketFile& operator=(const SocketFile&) = delete;

    /// Listens on `path`, for everybody whom the umask allows, or only for this user. A stale
    /// socket there is replaced; anything else there is an error. Throws a `tools::Error`.
    void listen(const std::string& path, bool isPrivate);
    void close();

    /// Whether a path leads to this socket, also through a link or by another spelling.
    bool isAt(const std::string& path) const;

    Acceptor& acceptor() { return _acceptor; }

private:
    void open(const std::string& path, bool isPrivate);

    Acceptor _acceptor;
    std::string _path;
    struct stat _identity {};
};

/// The address of a socket path. Throws a `tools::Error` if the path is empty or too long.
Address toAddress(const std::string& path);

/// Connects a socket without blocking. Fails with EAGAIN if the queue of an engine that does not
/// accept is full, which Asio's own function would report as a success. If `name` is not empty, the
/// other side sees it as the address of this side.
asio::error_code connectAtOnce(asio::local::stream_protocol::socket& socket, const Address& address,
                               const std::string& name = "");

} // namespace azubsim
