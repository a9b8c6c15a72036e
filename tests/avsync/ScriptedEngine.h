#pragma once

#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <string>
#include <thread>

#include "avsync/Ntp.h"
#include "tests/support/Frames.h"
#include "tests/support/Listener.h"

namespace tests {

/// An engine for what azubsim cannot do. Its sound has a latency of 90 ms and the margin. Serves
/// one client after the other.
class ScriptedEngine {
public:
    explicit ScriptedEngine(const std::string& path)
        : _listener(path), _thread([this] { serve(); }) {}

    ~ScriptedEngine() {
        _listener.stop();
        _thread.join();
    }

    std::atomic<bool> refusesMargins{false};
    std::atomic<double> clockMs{0}; ///< How far its clock is ahead.
    std::atomic<int> clients{0};
    std::atomic<int> marginRequests{0};

private:
    void serve() {
        for (int fd; (fd = _listener.accept()) >= 0; close(fd)) {
            ++clients;
            char chunk[512];
            // The client waits for the answer before it sends the next request.
            for (ssize_t n; (n = read(fd, chunk, sizeof(chunk))) > 0;) {
                const std::string reply = answer({chunk, static_cast<std::size_t>(n)});
                send(fd, reply.data(), reply.size(), MSG_NOSIGNAL);
            }
        }
    }

    std::string answer(const std::string& request) {
        using namespace velta::zub::avsync;
        const std::string name = "<SetAudioDelay_Request>";
        const auto margin = request.find(name);
        if (margin == std::string::npos) {
            const auto at = [&](double ms) {
                return std::to_string(ntpAddMs(ntpNow(), clockMs + ms));
            };
            return timestampsFrame(at(-60), at(30 + _marginMs), at(0), "20");
        }
        ++marginRequests;
        if (!refusesMargins) {
            _marginMs = std::stod(request.substr(margin + name.size()));
        }
        return delayFrame(refusesMargins ? "1002" : "1000");
    }

    double _marginMs = 0;
    Listener _listener;
    std::thread _thread;
};

} // namespace tests
