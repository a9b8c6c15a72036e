#pragma once

#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>
#include <asio/steady_timer.hpp>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <string_view>

#include "tools/azubsim/Reply.h"

namespace azubsim {

/// A connected socket that reads and writes in the background.
class Connection : public std::enable_shared_from_this<Connection> {
public:
    using Socket = asio::local::stream_protocol::socket;

    struct Handlers {
        std::function<void(std::string_view)> received;
        /// The far end sends no more. If it is gone, it does not read any more either. Can be
        /// called twice, the second time because it has gone.
        std::function<void(bool isGone)> ended;
        std::function<void()> drained; ///< Everything was written, or cannot be written any more.
    };

    explicit Connection(Socket socket);

    /// Starts reading. The handlers are called from the event loop, never from the functions of
    /// this class, and are destroyed by `close`.
    void start(Handlers handlers);

    /// Stops reading, so that the far end has to wait, or reads again.
    void pause() { _isPaused = true; }
    void resume();

    /// Writes the bytes after everything that was sent before and after their wait.
    void send(Reply::Piece piece);

    /// Bytes that are not written yet.
    std::size_t unsent() const { return _unsent; }

    /// Once everything is written, tells the far end that no more will come.
    void endSending();

    /// Once everything is written, closes the connection. Reads no more.
    void closeWhenSent();

    /// Closes at once. If `received` calls this, the far end sees a reset.
    void close();

    /// Whether it reads and takes bytes to send.
    bool isOpen() const { return _socket.is_open() && !_isClosing; }

private:
    void read();
    void receive();
    void waitForHangUp();
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
    bool _isReceiving = false;
    bool _isWriting = false;
    bool _endsSending = false;
    bool _isClosing = false;
};

} // namespace azubsim
