#include "benchmarks/exchange/FloorContestant.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "benchmarks/exchange/Answers.h"

namespace exchange {

namespace {

// What the library asks for in one read.
constexpr std::size_t chunkSize = 511;

int connectTo(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
    if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        close(fd);
        throw std::runtime_error("floor: cannot connect");
    }
    return fd;
}

bool isComplete(const char* bytes, std::size_t size) {
    return size >= 2 && bytes[size - 1] == '\n' && bytes[size - 2] == '\n';
}

} // namespace

FloorContestant::FloorContestant()
    : _server("text"), _answers(textAnswers()), _received{}, _fd(connectTo(_server.path())) {}

FloorContestant::~FloorContestant() {
    close(_fd);
}

void FloorContestant::exchange() {
    send();
    const std::size_t size = receive();
    const std::string& expected = _answers[_next++ % answerCount];
    if (size != expected.size() || std::memcmp(_received, expected.data(), size) != 0) {
        throw std::runtime_error("floor: a wrong answer");
    }
}

void FloorContestant::send() const {
    if (write(_fd, textRequest.data(), textRequest.size()) !=
        static_cast<ssize_t>(textRequest.size())) {
        throw std::runtime_error("floor: cannot write");
    }
}

std::size_t FloorContestant::receive() {
    std::size_t size = 0;
    while (!isComplete(_received, size)) {
        const ssize_t n =
            read(_fd, _received + size, std::min(chunkSize, sizeof(_received) - size));
        if (n <= 0) {
            throw std::runtime_error("floor: cannot read");
        }
        size += static_cast<std::size_t>(n);
    }
    return size;
}

} // namespace exchange
