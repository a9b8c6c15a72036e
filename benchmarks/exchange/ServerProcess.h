#pragma once

#include <sys/types.h>

#include <string>

#include "tests/support/TemporaryDirectory.h"

namespace exchange {

/// A server process for one connection. It runs where this process runs when it is started: on the
/// same core if this process has been pinned to one.
class ServerProcess {
public:
    /// `protocol` is "text" or "bus". The socket can be connected to at once.
    explicit ServerProcess(const char* protocol);
    ~ServerProcess();

    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;

    /// Path of its socket.
    const std::string& path() const { return _path; }

private:
    tests::TemporaryDirectory _directory;
    std::string _path;
    pid_t _process;
};

} // namespace exchange
