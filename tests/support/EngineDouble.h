#pragma once

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/support/Listener.h"
#include "tests/support/TemporaryDirectory.h"

namespace tests {

/// A scripted engine on its own thread.
class EngineDouble {
public:
    enum Script {
        Once,    ///< Serves one client, and hangs up on requests after the last frame.
        ForEver, ///< Serves one client after the other, and repeats the script.
    };

    /// Gives the answer to a request; empty to hang up. Runs in the thread.
    using Answer = std::function<std::string(const std::string& request)>;

    EngineDouble(Answer answer, Script script) : _answer(std::move(answer)), _script(script) {}

    /// Answers each request with the next frame.
    explicit EngineDouble(std::vector<std::string> frames, Script script = Once)
        : EngineDouble(
              [frames = std::move(frames), script, next = 0u](const std::string&) mutable {
                  const bool isOver = script == Once && next == frames.size();
                  return isOver ? std::string() : frames[next++ % frames.size()];
              },
              script) {}

    ~EngineDouble() { received(); }

    std::string path() const { return _directory.path() + "/engine"; }

    /// Waits for the end of the connection and returns all that the client sent. For `Once` only.
    std::string received() {
        if (_thread.joinable()) {
            // Wakes the thread if it still waits for a client.
            _listener.stop();
            _thread.join();
        }
        return _received;
    }

private:
    void serve() {
        int fd;
        do {
            fd = _listener.accept();
            while (serveRequest(fd)) {
            }
            close(fd);
        } while (_script == ForEver && fd >= 0);
    }

    // The client waits for the answer before it sends the next request.
    bool serveRequest(int fd) {
        std::string request;
        char chunk[256];
        ssize_t n = 1;
        while (n > 0 && request.find("\n\n") == std::string::npos) {
            n = read(fd, chunk, sizeof(chunk));
            request.append(chunk, static_cast<std::size_t>(std::max<ssize_t>(n, 0)));
        }
        if (_script == Once) {
            _received += request;
        }
        const std::string answer = n > 0 ? _answer(request) : "";
        return !answer.empty() && send(fd, answer.data(), answer.size(), MSG_NOSIGNAL) >= 0;
    }

    const TemporaryDirectory _directory;
    const Answer _answer;
    const Script _script;
    std::string _received;
    const Listener _listener{path()};
    std::thread _thread{[this] { serve(); }};
};

} // namespace tests
