#pragma once

#include <string>

// Skips the test where programs may not create socket files, for example in a shell on a device.
#define SKIP_WITHOUT_SOCKET_FILES()     \
    if (!tests::canCreateSocketFiles()) \
    GTEST_SKIP() << "no socket file can be created"

namespace tests {

bool canCreateSocketFiles();

/// A listening Unix-domain socket. The destructor closes it, but leaves its file as a stale socket.
class Listener {
public:
    explicit Listener(const std::string& path);
    ~Listener();

    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    /// Blocks until a client connects. Returns its descriptor, which the caller closes, or a
    /// negative number after `stop`.
    int accept() const;

    /// Makes a blocked `accept` and all later ones fail.
    void stop() const;

private:
    int _fd;
};

} // namespace tests
