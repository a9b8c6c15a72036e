#include "tests/support/EngineDouble.h"

#include <sys/socket.h>
#include <unistd.h>

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
        // Frees a thread whose client never came.
        _listener.stop();
        _thread.join();
    }
    return _received;
}

void EngineDouble::serve() {
    do {
        const int fd = _listener.accept();
        if (fd < 0) {
            return;
        }
        serveClient(fd);
        close(fd);
    } while (_script == ForEver);
}

void EngineDouble::serveClient(int fd) {
    std::size_t requestStart = 0;
    char chunk[256];
    ssize_t n;
    while ((n = read(fd, chunk, sizeof(chunk))) > 0) {
        _received.append(chunk, static_cast<std::size_t>(n));
        const std::size_t end = _received.find("\n\n", requestStart);
        if (end == std::string::npos) {
            continue;
        }
        requestStart = end + 2;
        if (!answer(fd)) {
            return;
        }
        if (_script == ForEver) {
            _received.clear();
            requestStart = 0;
        }
    }
}

bool EngineDouble::answer(int fd) {
    if (_next == _frames.size()) {
        return false;
    }
    const std::string& frame = _frames[_next++];
    if (_script == ForEver) {
        _next %= _frames.size();
    }
    return send(fd, frame.data(), frame.size(), MSG_NOSIGNAL) >= 0;
}

} // namespace tests
