#include "tests/support/EngineDouble.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace tests {

EngineDouble::EngineDouble(std::vector<std::string> frames, Script script)
    : _frames(std::move(frames)),
      _script(script),
      _listener(path()),
      _thread([this] { serve(); }) {}

EngineDouble::~EngineDouble() {
    received();
}

std::string EngineDouble::received() {
    if (_thread.joinable()) {
        // Wakes the thread if it still waits for a client.
        _listener.stop();
        _thread.join();
    }
    return _received;
}

void EngineDouble::serve() {
    int fd;
    do {
        fd = _listener.accept();
        while (receive(fd) && answer(fd)) {
        }
        close(fd);
    } while (_script == ForEver && fd >= 0);
}

// Reads one request. The client waits for the answer before it sends the next one.
bool EngineDouble::receive(int fd) {
    ssize_t n = 0;
    _request.clear();
    do {
        char chunk[256];
        n = read(fd, chunk, sizeof(chunk));
        _request.append(chunk, static_cast<std::size_t>(std::max<ssize_t>(n, 0)));
    } while (n > 0 && _request.find("\n\n") == std::string::npos);
    if (_script == Once) {
        _received += _request;
    }
    return n > 0;
}

bool EngineDouble::answer(int fd) {
    if (_script == Once && _next == _frames.size()) {
        return false;
    }
    const std::string& frame = _frames[_next++ % _frames.size()];
    return send(fd, frame.data(), frame.size(), MSG_NOSIGNAL) >= 0;
}

} // namespace tests
