#pragma once

#include <sys/socket.h>
#include <unistd.h>

#include <string>

namespace tests {

/// Two connected sockets: the object under test owns the near one, the far one is its peer.
class SocketPair {
public:
    explicit SocketPair(int type = SOCK_STREAM) { socketpair(AF_UNIX, type, 0, _fds); }

    ~SocketPair() { closeFar(); }

    SocketPair(const SocketPair&) = delete;
    SocketPair& operator=(const SocketPair&) = delete;

    int takeNear() const { return _fds[0]; }
    int far() const { return _fds[1]; }

    void send(const std::string& bytes) const {
        ::send(_fds[1], bytes.data(), bytes.size(), MSG_NOSIGNAL);
    }

    /// Returns the bytes that have arrived, if any. Does not block.
    std::string receive() const {
        std::string bytes(4096, '\0');
        const ssize_t n = recv(_fds[1], bytes.data(), bytes.size(), MSG_DONTWAIT);
        bytes.resize(n < 0 ? 0 : static_cast<std::size_t>(n));
        return bytes;
    }

    void closeFar() {
        if (_fds[1] >= 0) {
            close(_fds[1]);
        }
        _fds[1] = -1;
    }

private:
    int _fds[2] = {-1, -1};
};

} // namespace tests
