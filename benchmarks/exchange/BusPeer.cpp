#include "benchmarks/exchange/BusPeer.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>

#include "benchmarks/exchange/Values.h"

namespace exchange {

namespace {

// Numbers are little-endian, as `order` tells the receiver.
struct Header {
    char order = 'l';
    char type = 2;
    char flags = 1;
    char version = 1;
    std::uint32_t bodySize = 0;
    std::uint32_t serial = 0;
    std::uint32_t fieldsSize = 0;
};

// A method return with four unsigned 64-bit numbers. Each header field and the body start at a
// multiple of eight bytes.
struct Answer {
    Header header;
    char replySerialField[4] = {5, 1, 'u', 0};
    std::uint32_t replySerial = 0;
    char signatureField[10] = {8, 1, 'g', 0, 4, 't', 't', 't', 't', 0};
    char padding[6] = {};
    Values values{};
};
static_assert(sizeof(Answer) == 72);

std::vector<Answer> prepareAnswers() {
    std::vector<Answer> answers(answerCount);
    for (std::size_t i = 0; i < answerCount; ++i) {
        answers[i].header.bodySize = sizeof(Values);
        answers[i].header.fieldsSize = 18;
        answers[i].values = valuesOf(i);
    }
    return answers;
}

bool sendAll(int fd, const void* bytes, std::size_t size) {
    return send(fd, bytes, size, MSG_NOSIGNAL) == static_cast<ssize_t>(size);
}

// The client sends all its authentication commands at once. One reply accepts them all: it asks for
// the identity, accepts it and allows passing of descriptors.
bool authenticate(int fd) {
    const std::string accepted = "DATA\r\nOK " + std::string(32, '1') + "\r\nAGREE_UNIX_FD\r\n";
    char received[256];
    return read(fd, received, sizeof(received)) > 0 &&
           sendAll(fd, accepted.data(), accepted.size());
}

// A call arrives in one read, because its sender waits for the answer before it sends more.
// Anything but exactly one call ends the connection without an answer.
bool isCall(const Header& call, std::size_t size) {
    return call.order == 'l' && call.type == 1 &&
           size == sizeof(call) + (call.fieldsSize + 7) / 8 * 8 + call.bodySize;
}

void answerCalls(int fd) {
    std::vector<Answer> answers = prepareAnswers();
    std::uint32_t count = 0;
    char chunk[1024];
    for (ssize_t n; (n = read(fd, chunk, sizeof(chunk))) >= static_cast<ssize_t>(sizeof(Header));) {
        Header call;
        std::memcpy(&call, chunk, sizeof(call));
        Answer& answer = answers[count % answerCount];
        answer.header.serial = ++count;
        answer.replySerial = call.serial;
        if (!isCall(call, static_cast<std::size_t>(n)) || !sendAll(fd, &answer, sizeof(answer))) {
            return;
        }
    }
}

} // namespace

BusPeer::BusPeer() : _listener(path()), _thread([this] { serve(); }) {}

BusPeer::~BusPeer() {
    _listener.stop();
    _thread.join();
}

void BusPeer::serve() const {
    const int fd = _listener.accept();
    if (authenticate(fd)) {
        answerCalls(fd);
    }
    close(fd);
}

} // namespace exchange
