#pragma once

#include <sys/socket.h>
#include <unistd.h>

#include <string>

namespace tests {

/// Two connected sockets: the near one is for the object under test, which takes it over, the far
/// one plays the peer.
class SocketPair {
public:
    explicit SocketPair(int type = SOCK_STREAM) { socketpair(AF_UNIX, type, 0, _fds); }

    ~SocketPair() { closeFar(); }

    SocketPair(const SocketPair&) = delete;
    SocketPair& operator=(const SocketPair&) = delete;

    int takeNear() const { return _fds[0]; }

    void send(const std::string& bytes) const {
        ::send(_fds[1], bytes.data(), bytes.size(), MSG_NOSIGNAL);
    }

    /// What one read brings.
    std::string receive() const {
        std::string bytes(65536, '\0');
        const ssize_t n = read(_fds[1], bytes.data(), bytes.size());
        bytes.resize(n < 0 ? 0 : static_cast<std::size_t>(n));
        return bytes;
    }

    /// So many bytes, or fewer if the other side closes.
    std::string receiveBytes(std::size_t count) const {
        std::string bytes;
        while (bytes.size() < count) {
            const std::string some = receive();
            if (some.empty()) {
                break;
            }
            bytes += some;
        }
        return bytes;
    }

    int far() const { return _fds[1]; }

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
