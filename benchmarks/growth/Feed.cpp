#include "benchmarks/growth/Feed.h"

#include <sys/socket.h>

#include <algorithm>

namespace benchmarks {

Feed::Feed(int socket, const std::string& bytes, std::size_t pieceSize)
    : _socket(socket), _bytes(bytes), _pieceSize(pieceSize) {
    sendSome(MSG_DONTWAIT);
    _thread = std::thread([this] { sendSome(0); });
}

Feed::~Feed() {
    _thread.join();
}

// Up to the end, or to where sending fails or would block.
void Feed::sendSome(int flags) {
    while (_sent < _bytes.size()) {
        const std::size_t piece = std::min(_pieceSize, _bytes.size() - _sent);
        const ssize_t n = send(_socket, _bytes.data() + _sent, piece, flags | MSG_NOSIGNAL);
        if (n < 0) {
            return;
        }
        _sent += static_cast<std::size_t>(n);
    }
}

} // namespace benchmarks
