#include "tests/support/EngineDouble.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <utility>

namespace tests {

namespace {

std::string element(const std::string& name, const std::string& content) {
    return content.empty() ? '<' + name + " />" : '<' + name + '>' + content + "</" + name + '>';
}

std::string result(const std::string& code, const std::string& message) {
    return element("Result", element("ErrorCode", code) + element("Message", message));
}

} // namespace

TemporaryDirectory::TemporaryDirectory() : _path("/tmp/zublipsyncXXXXXX") {
    if (mkdtemp(_path.data()) == nullptr) {
        std::abort();
    }
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(_path, ignored);
}

int listenAt(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.data(), path.size());
    const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
    if (bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0 ||
        listen(fd, 4) != 0) {
        std::abort();
    }
    return fd;
}

EngineDouble::EngineDouble(std::vector<std::string> answers)
    : _answers(std::move(answers)), _listener(listenAt(path())), _thread([this] { serve(); }) {}

EngineDouble::~EngineDouble() {
    received();
    close(_listener);
}

std::string EngineDouble::received() {
    if (_thread.joinable()) {
        // Frees a thread whose client never came.
        shutdown(_listener, SHUT_RDWR);
        _thread.join();
    }
    return _received;
}

void EngineDouble::serve() {
    const int fd = accept(_listener, nullptr, nullptr);
    if (fd < 0) {
        return;
    }
    std::size_t answered = 0;
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
        if (answered == _answers.size()) {
            break;
        }
        const std::string& answer = _answers[answered++];
        if (send(fd, answer.data(), answer.size(), MSG_NOSIGNAL) < 0) {
            break;
        }
    }
    close(fd);
}

std::string document(const std::string& content) {
    return "<?xml version=\"1.0\" ?><AZUB version=\"0.1.0\">" + content + "</AZUB>\n\n";
}

std::string timestampsAnswer(const std::string& capture, const std::string& rendering,
                             const std::string& receiving, const std::string& depth,
                             const std::string& code, const std::string& message) {
    return document(
        element("GetAudioTs_Answer",
                element("LipSyncNtpTimestamps", element("capture_timestamp", capture) +
                                                    element("rendering_timestamp", rendering) +
                                                    element("receiving_timestamp", receiving) +
                                                    element("jitter_buffer_depth", depth)) +
                    result(code, message)));
}

std::string delayAnswer(const std::string& code, const std::string& message) {
    return document(element("SetAudioDelay_Answer", result(code, message)));
}

} // namespace tests
