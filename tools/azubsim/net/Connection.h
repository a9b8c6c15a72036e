#pragma once

#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>
#include <asio/steady_timer.hpp>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <string_view>

#include "tools/azubsim/protocol/Exchange.h"

namespace azubsim {

/// A connected socket that reads and writes in the background.
class Connection : public std::enable_shared_from_this<Connection> {
public:
    using Socket = asio::local::stream_protocol::socket;

    struct Handlers {
        std::function<void(std::string_view)> received;
        /// The far end sends no more; if `isGone`, it does not read any more either. May be called
        /// a second time with `isGone`, when the far end closes its socket later.
        std::function<void(bool isGone)> ended;
        /// The far end has closed its socket, but reading is paused, so that more bytes may be
        /// there. May be empty.
        std::function<void()> left;
        std::function<void()> drained; ///< Everything was written, or cannot be written any more.
    };

    explicit Connection(Socket socket);

    /// Starts reading, unless it is paused. The handlers are called from the event loop, never from
    /// the functions of this class, and are destroyed by `close`.
    void start(Handlers handlers);

    /// Stops reading until `resume`, so that the far end has to wait.
    void pause();
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
    void receive();
    void waitForHangUp();
    void reportIfLeft();
    void write();
    void writeFirstPiece();
    void written(const asio::error_code& error, std::size_t size);
    void dropUnsent();
    void finishSending();

    Socket _socket;
    asio::steady_timer _timer;
    std::shared_ptr<const Handlers> _handlers;
    std::deque<Reply::Piece> _pieces;
    std::size_t _written = 0; ///< Bytes of the first piece.
    std::size_t _unsent = 0;
    bool _isReading = false;
    bool _isPaused = false;
    bool _hasEnded = false; ///< The far end sends no more.
    bool _isGone = false;   ///< The far end has closed its socket.
    bool _isWriting = false;
    bool _endsSending = false;
    bool _isClosing = false;
};

} // namespace azubsim
