#pragma once

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "tests/support/TemporaryDirectory.h"

// Skips the test where programs may not create socket files, for example in a shell on a device.
#define SKIP_WITHOUT_SOCKET_FILES()     \
    if (!tests::canCreateSocketFiles()) \
    GTEST_SKIP() << "no socket file can be created"

namespace tests {

inline bool bindTo(int fd, const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof(address.sun_path));
    return bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
}

inline bool canCreateSocketFiles() {
    const TemporaryDirectory directory;
    const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
    const bool isBound = bindTo(fd, directory.path() + "/socket");
    close(fd);
    return isBound;
}

/// A listening Unix-domain socket. The destructor closes it, but leaves its file as a stale socket.
class Listener {
public:
    explicit Listener(const std::string& path) {
        if (!bindTo(_fd, path) || listen(_fd, 4) != 0) {
            std::abort();
        }
    }
    ~Listener() { close(_fd); }

    Listener(const Listener&) = delete;

    /// Blocks until a client connects. Returns its descriptor, which the caller closes, or a
    /// negative number after `stop`.
    int accept() const { return ::accept(_fd, nullptr, nullptr); }

    /// Makes a blocked `accept` and all later ones fail.
    void stop() const { shutdown(_fd, SHUT_RDWR); }

private:
    const int _fd = socket(AF_UNIX, SOCK_STREAM, 0);
};

} // namespace tests
