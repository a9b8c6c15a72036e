#pragma once

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <vector>

#include "tests/support/EngineDouble.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Process.h"

namespace tests {

/// An engine simulator that listens.
class Engine {
public:
    explicit Engine(const std::vector<std::string>& options)
        : _process(command(socket(), options)) {
        _process.readUntil("listening at");
    }

    std::string socket() const { return _directory.path() + "/engine"; }
    Process& process() { return _process; }

private:
    static std::vector<std::string> command(const std::string& socket,
                                            const std::vector<std::string>& options) {
        std::vector<std::string> words{AZUBSIM, "--socket", socket};
        words.insert(words.end(), options.begin(), options.end());
        return words;
    }

    TemporaryDirectory _directory;
    Process _process;
};

/// A connection to an engine, without the library.
class Connection {
public:
    explicit Connection(const std::string& path) : _fd(::socket(AF_UNIX, SOCK_STREAM, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, path.data(), path.size());
        EXPECT_EQ(connect(_fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    }

    ~Connection() { close(_fd); }

    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    void send(const std::string& bytes) const {
        ::send(_fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    }

    /// Waits for some bytes; the number of them.
    ssize_t receive() const {
        char bytes[256];
        return recv(_fd, bytes, sizeof(bytes), 0);
    }

private:
    int _fd;
};

} // namespace tests
