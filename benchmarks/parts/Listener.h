#pragma once

#include <sys/socket.h>
#include <unistd.h>

#include <string>

#include "tests/support/Listener.h"
#include "tests/support/TemporaryDirectory.h"

namespace benchmarks {

/// A listening socket, whose connections are served in the thread that makes them.
class Listener {
public:
    Listener() : _path(_directory.path() + "/engine"), _socket(_path) {}

    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    const std::string& path() const { return _path; }

    /// The far end of the next connection, or a negative number. The caller closes it.
    int far() const { return _socket.accept(); }

    /// The far end of the next connection goes. Whether there was one.
    bool drop() const {
        const int end = far();
        return end >= 0 && close(end) == 0;
    }

private:
    const tests::TemporaryDirectory _directory;
    const std::string _path;
    const tests::Listener _socket;
};

} // namespace benchmarks
