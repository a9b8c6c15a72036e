#include "benchmarks/exchange/BusPeer.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>

#include "benchmarks/exchange/Values.h"

namespace exchange {

namespace {

// Numbers are in the byte order of the machine, which the first byte tells.
struct Header {
    char order = 'l';
    char type = 2;
    char flags = 1;
    char version = 1;
    std::uint32_t bodySize = 0;
    std::uint32_t serial = 0;
    std::uint32_t fieldsSize = 0;
};

// A method's return with four unsigned 64-bit numbers. Each field begins, and the body too, at a
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

// The client sends all it has to say in one go, and is told in one go that everything was right:
// its identity was asked for and accepted, and descriptors may be passed.
bool authenticate(int fd) {
    const std::string accepted = "DATA\r\nOK " + std::string(32, '1') + "\r\nAGREE_UNIX_FD\r\n";
    char received[256];
    return read(fd, received, sizeof(received)) > 0 &&
           sendAll(fd, accepted.data(), accepted.size());
}

// A call arrives in one piece: its sender waits for the answer before it sends more. What is not
// just one call is not answered, and ends the connection.
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
