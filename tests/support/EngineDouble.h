#pragma once

#include <string>
#include <thread>
#include <vector>

#include "tests/support/Listener.h"
#include "tests/support/TemporaryDirectory.h"

namespace tests {

/// A scripted engine on its own thread: it answers each request with the next frame of the script.
class EngineDouble {
public:
    enum Script {
        Once,    ///< Serves one client, and hangs up on requests after the last frame.
        ForEver, ///< Serves one client after the other, and repeats the script.
    };

    explicit EngineDouble(std::vector<std::string> frames, Script script = Once);
    ~EngineDouble();

    EngineDouble(const EngineDouble&) = delete;
    EngineDouble& operator=(const EngineDouble&) = delete;

    std::string path() const { return _directory.path() + "/engine"; }

    /// Waits for the end of the connection and returns all that the client sent. For `Once` only.
    std::string received();

private:
    void serve();
    bool receive(int fd);
    bool answer(int fd);

    TemporaryDirectory _directory;
    std::vector<std::string> _frames;
    Script _script;
    std::size_t _next = 0;
    std::string _request;
    std::string _received;
    Listener _listener;
    std::thread _thread;
};

} // namespace tests
