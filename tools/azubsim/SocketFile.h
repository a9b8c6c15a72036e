#pragma once

#include <sys/stat.h>

#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>
#include <string>

namespace azubsim {

/// A listening Unix-domain socket and its file. `close` and the destructor remove both.
class SocketFile {
public:
    using Acceptor = asio::local::stream_protocol::acceptor;

    explicit SocketFile(asio::io_context& io) : _acceptor(io) {}
    ~SocketFile() { close(); }

    SocketFile(const SocketFile&) = delete;
    SocketFile& operator=(const SocketFile&) = delete;

    /// Listens on `path`. A stale socket there is replaced; anything else there is an error.
    /// Returns false, with the reason in `error`, if it fails.
    bool listen(const std::string& path, std::string& error);
    void close();

    Acceptor& acceptor() { return _acceptor; }

private:
    Acceptor _acceptor;
    std::string _path;
    struct stat _identity {};
};

/// The address of a socket path. Returns false, with the reason in `error`, if the path is too
/// long.
bool toAddress(const std::string& path, asio::local::stream_protocol::endpoint& address,
               std::string& error);

/// Connects a socket without blocking. Fails with EAGAIN if the queue of an engine that does not
/// accept is full, which Asio's own function would report as a success.
asio::error_code connectAtOnce(asio::local::stream_protocol::socket& socket,
                               const asio::local::stream_protocol::endpoint& address);

} // namespace azubsim
