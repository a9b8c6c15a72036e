#include "tools/azubsim/net/Connection.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <asio/write.hpp>
#include <cerrno>
#include <utility>

#include "tools/common/Error.h"

namespace azubsim {

Address toAddress(const std::string& path) {
    constexpr std::size_t maxSize = sizeof(sockaddr_un::sun_path) - 1;
    tools::require(!path.empty() && path.size() <= maxSize,
                   "a socket path must have 1 to " + std::to_string(maxSize) + " bytes, not " +
                       std::to_string(path.size()));
    return {path};
}

asio::error_code connectAtOnce(Socket& socket, const Address& address) {
    asio::error_code error;
    socket.open(address.protocol(), error);
    if (!error) {
        socket.non_blocking(true, error);
    }
    if (!error && ::connect(socket.native_handle(), address.data(),
                            static_cast<socklen_t>(address.size())) != 0) {
        error.assign(errno, asio::system_category());
    }
    return error;
}

bool hasHungUp(Socket& socket) {
    pollfd polled{socket.native_handle(), 0, 0};
    return poll(&polled, 1, 0) > 0 && (polled.revents & POLLHUP) != 0;
}

Connection::Connection(Socket socket)
    : _socket(std::move(socket)), _timer(_socket.get_executor()), _chunk() {}

void Connection::start(Handlers handlers) {
    _handlers = std::make_shared<const Handlers>(std::move(handlers));
    waitForHangUp();
    startReading();
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
    _socket.async_receive(
        asio::buffer(_chunk),
        [self = shared_from_this()](const asio::error_code& error, std::size_t size) {
            self->_isReading = false;
            if (self->isOpen()) {
                self->received(error, size);
            }
        });
}

void Connection::received(const asio::error_code& error, std::size_t size) {
    // A handler may call `close`.
    const auto handlers = _handlers;
    if (error) {
        _hasEnded = true;
        handlers->ended();
        return;
    }
    handlers->received({_chunk.data(), size});
    startReading();
}

// The end that a read finds comes after everything that the far end had sent. This one comes at
// once, also while reading is paused.
void Connection::waitForHangUp() {
    _socket.async_wait(Socket::wait_error,
                       [self = shared_from_this()](const asio::error_code& error) {
                           const auto handlers = self->_handlers;
                           // The event may belong to a closed socket with the same number.
                           if (!error && handlers && hasHungUp(self->_socket)) {
                               // What is not due yet fails now, and nothing more is due.
                               self->_endsSending = true;
                               self->_timer.cancel();
                               handlers->left();
                           }
                       });
}

void Connection::send(Reply::Piece piece) {
    if (isOpen() && !_endsSending) {
        _unsent += piece.bytes.size();
        _pieces.push_back(std::move(piece));
        write();
    }
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
    if (const auto handlers = std::exchange(_handlers, nullptr)) {
        handlers->closed();
    }
}

// Waits until the first piece is due.
void Connection::write() {
    if (_isWriting || !_socket.is_open()) {
        return;
    }
    if (_pieces.empty()) {
        asio::error_code ignored;
        if (_isClosing) {
            close();
        } else if (_endsSending) {
            _socket.shutdown(Socket::shutdown_send, ignored);
        }
        return;
    }
    _isWriting = true;
    const auto wait = std::exchange(_pieces.front().wait, noWait);
    if (wait == noWait) {
        writeFirstPiece();
        return;
    }
    _timer.expires_after(wait);
    _timer.async_wait(
        [self = shared_from_this()](const asio::error_code&) { self->writeFirstPiece(); });
}

void Connection::writeFirstPiece() {
    asio::async_write(_socket, asio::buffer(_pieces.front().bytes),
                      [self = shared_from_this()](const asio::error_code& error, std::size_t) {
                          if (self->_socket.is_open()) {
                              self->written(error);
                          }
                      });
}

void Connection::written(const asio::error_code& error) {
    const auto handlers = _handlers;
    _isWriting = false;
    _unsent -= _pieces.front().bytes.size();
    _pieces.pop_front();
    if (error) {
        // The far end takes no more bytes, but what it has sent may not be read yet.
        _endsSending = true;
        _pieces.clear();
        _unsent = 0;
    }
    if (_pieces.empty()) {
        handlers->drained();
    }
    write();
}

} // namespace azubsim
