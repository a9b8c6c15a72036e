#include "tools/azubsim/net/Connection.h"

#include <algorithm>
#include <array>
#include <asio/buffer.hpp>
#include <asio/error.hpp>
#include <asio/post.hpp>
#include <utility>

namespace azubsim {

namespace {

// Most bytes written to one connection before the others are served.
constexpr std::size_t maxBytesInARow = 262144;

bool mustWait(const asio::error_code& error) {
    return error == asio::error::would_block || error == asio::error::interrupted;
}

} // namespace

Connection::Connection(Socket socket) : _socket(std::move(socket)), _timer(_socket.get_executor()) {
    asio::error_code ignored;
    _socket.non_blocking(true, ignored);
}

void Connection::start(Handlers handlers) {
    _handlers = std::make_shared<const Handlers>(std::move(handlers));
    waitForHangUp();
    startReading();
}

void Connection::pause() {
    _isPaused = true;
    asio::post(_socket.get_executor(), [self = shared_from_this()] { self->reportIfLeft(); });
}

void Connection::resume() {
    _isPaused = false;
    startReading();
}

void Connection::startReading() {
    if (_isReading || _isPaused || _hasEnded || !isOpen()) {
        return;
    }
    _isReading = true;
    _socket.async_wait(Socket::wait_read,
                       [self = shared_from_this()](const asio::error_code& error) {
                           self->_isReading = false;
                           if (!error && !self->_isPaused && self->isOpen()) {
                               self->receive();
                           }
                       });
}

void Connection::receive() {
    // A handler may call `close`.
    const auto handlers = _handlers;
    // Sockets are read one after the other, so they share the memory.
    static std::array<char, 65536> chunk;
    asio::error_code error;
    const std::size_t size = _socket.receive(asio::buffer(chunk), 0, error);
    if (!error) {
        handlers->received({chunk.data(), size});
    } else if (!mustWait(error)) {
        _hasEnded = true;
        _isGone = _isGone || error != asio::error::eof;
        handlers->ended(_isGone);
    }
    startReading();
}

// The end that a read finds comes after everything that the far end had sent. This one comes at
// once.
void Connection::waitForHangUp() {
    _socket.async_wait(Socket::wait_error,
                       [self = shared_from_this()](const asio::error_code& error) {
                           const auto handlers = self->_handlers;
                           if (error || !handlers) {
                               return;
                           }
                           self->_isGone = true;
                           if (self->_hasEnded) {
                               handlers->ended(true);
                           } else {
                               self->reportIfLeft();
                           }
                       });
}

void Connection::reportIfLeft() {
    const auto handlers = _handlers;
    if (_isPaused && _isGone && !_hasEnded && handlers && handlers->left) {
        handlers->left();
    }
}

void Connection::send(Reply::Piece piece) {
    if (!isOpen() || _endsSending) {
        return;
    }
    _unsent += piece.bytes.size();
    _pieces.push_back(std::move(piece));
    write();
}

void Connection::endSending() {
    _endsSending = true;
    write();
}

void Connection::closeWhenSent() {
    _isClosing = true;
    write();
}

void Connection::close() {
    asio::error_code ignored;
    _timer.cancel(ignored);
    _socket.close(ignored);
    _handlers.reset();
}

// Waits until the first piece is due.
void Connection::write() {
    if (_isWriting || !_socket.is_open()) {
        return;
    }
    if (_pieces.empty()) {
        finishSending();
        return;
    }
    _isWriting = true;
    const auto wait = std::exchange(_pieces.front().wait, std::chrono::microseconds(0));
    if (wait.count() == 0) {
        writeFirstPiece();
        return;
    }
    _timer.expires_after(wait);
    _timer.async_wait([self = shared_from_this()](const asio::error_code&) {
        if (self->_socket.is_open()) {
            self->writeFirstPiece();
        }
    });
}

void Connection::writeFirstPiece() {
    const std::string& bytes = _pieces.front().bytes;
    const std::size_t size = std::min(bytes.size() - _written, maxBytesInARow);
    _socket.async_send(
        asio::buffer(bytes.data() + _written, size),
        [self = shared_from_this()](const asio::error_code& error, std::size_t count) {
            if (self->_socket.is_open()) {
                self->written(error, count);
            }
        });
}

void Connection::written(const asio::error_code& error, std::size_t size) {
    _isWriting = false;
    const auto handlers = _handlers;
    if (error) {
        dropUnsent();
        return;
    }
    _written += size;
    _unsent -= size;
    if (_written == _pieces.front().bytes.size()) {
        _pieces.pop_front();
        _written = 0;
    }
    if (_pieces.empty()) {
        handlers->drained();
    }
    write();
}

// The far end takes no more bytes, but what it has sent may not be read yet. Reading finds the end.
void Connection::dropUnsent() {
    const auto handlers = _handlers;
    _pieces.clear();
    _written = 0;
    _unsent = 0;
    _endsSending = true;
    if (_isClosing) {
        handlers->ended(true);
        return;
    }
    handlers->drained();
    startReading();
}

void Connection::finishSending() {
    asio::error_code ignored;
    if (_isClosing) {
        close();
    } else if (_endsSending) {
        _socket.shutdown(Socket::shutdown_send, ignored);
    }
}

} // namespace azubsim
