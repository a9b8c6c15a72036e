#pragma once

#include <string>
#include <thread>
#include <vector>

#include "tests/support/Listener.h"
#include "tests/support/TemporaryDirectory.h"

namespace tests {

/// An engine that plays a script, on a thread of its own: it answers every request with the next
/// frame of the script.
class EngineDouble {
public:
    enum Script {
        Once,    ///< For one client, whose connection is closed when it asks for more.
        ForEver, ///< For one client after the other, and from the start again at its end.
    };

    explicit EngineDouble(std::vector<std::string> frames, Script script = Once);
    ~EngineDouble();

    EngineDouble(const EngineDouble&) = delete;
    EngineDouble& operator=(const EngineDouble&) = delete;

    std::string path() const { return _directory.path() + "/engine"; }

    /// The bytes that the client of a script that is played once has sent. Waits until the client
    /// has gone.
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
