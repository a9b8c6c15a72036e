#pragma once

#include <array>
#include <asio/local/stream_protocol.hpp>
#include <asio/steady_timer.hpp>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "tools/azubsim/protocol/Exchange.h"

namespace azubsim {

using Address = asio::local::stream_protocol::endpoint;
using Socket = asio::local::stream_protocol::socket;

/// The address of a socket path. Throws a `tools::Error` if the path is empty or too long.
Address toAddress(const std::string& path);

/// Connects a socket without blocking. Fails with EAGAIN if the queue of an engine that does not
/// accept is full, which Asio's own function would report as a success.
asio::error_code connectAtOnce(Socket& socket, const Address& address);

/// Whether the far end has closed its socket.
bool hasHungUp(Socket& socket);

/// A connected socket that reads and writes in the background.
class Connection : public std::enable_shared_from_this<Connection> {
public:
    /// What to do when something happens. Called from the event loop, except for `closed`.
    struct Handlers {
        std::function<void(std::string_view)> received;
        /// The far end sends no more, but may still read.
        std::function<void()> ended;
        /// Everything was written, or cannot be written any more.
        std::function<void()> drained;
        /// The far end has closed its socket. What it sent may not be read yet.
        std::function<void()> left = [] {};
        /// This connection is closed, also by `close` itself. The last call.
        std::function<void()> closed = [] {};
    };

    explicit Connection(Socket socket);

    void start(Handlers handlers);

    /// Stops reading until `resume`, so that the far end has to wait.
    void pause() { _isPaused = true; }
    void resume();

    /// Writes the piece after all earlier ones. Its wait starts when they are written.
    void send(Reply::Piece piece);

    /// Bytes that are not written yet.
    std::size_t unsent() const { return _unsent; }

    /// Shuts down the sending side once everything is written.
    void endSending();

    /// Stops reading, and closes the connection once everything is written.
    void closeWhenSent();

    /// Closes at once.
    void close();

    /// False after `closeWhenSent` or `close`: nothing more is read, and `send` does nothing.
    bool isOpen() const { return _socket.is_open() && !_isClosing; }

private:
    void startReading();
    void received(const asio::error_code& error, std::size_t size);
    void waitForHangUp();
    void write();
    void writeFirstPiece();
    void written(const asio::error_code& error);

    Socket _socket;
    asio::steady_timer _timer;
    std::shared_ptr<const Handlers> _handlers; ///< Null when closed.
    std::array<char, 16384> _chunk;
    std::deque<Reply::Piece> _pieces;
    std::size_t _unsent = 0;
    bool _isReading = false;
    bool _isPaused = false;
    bool _hasEnded = false; ///< The far end sends no more.
    bool _isWriting = false;
    bool _endsSending = false;
    bool _isClosing = false;
};

} // namespace azubsim
