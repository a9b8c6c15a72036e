#include "benchmarks/exchange/BusPeer.h"

#include <cstring>
#include <stdexcept>

#include "benchmarks/exchange/Answers.h"

namespace exchange {

namespace {

constexpr std::string_view endOfAuthentication = "BEGIN\r\n";

// Where the numbers stand in a message. They are in the byte order of this machine, which the
// first byte tells, and which is the sender's here as well.
constexpr std::size_t bodySizeAt = 4;
constexpr std::size_t serialAt = 8;
constexpr std::size_t fieldsSizeAt = 12;
constexpr std::size_t headerSize = 16;
constexpr std::size_t replySerialAt = 20;

std::uint32_t numberAt(std::string_view message, std::size_t position) {
    std::uint32_t number = 0;
    std::memcpy(&number, message.data() + position, sizeof(number));
    return number;
}

void putNumber(std::string& message, std::size_t position, std::uint32_t number) {
    std::memcpy(message.data() + position, &number, sizeof(number));
}

// The fields are filled up to a multiple of eight bytes; the body follows.
std::size_t messageSize(std::string_view header) {
    const std::size_t fields = numberAt(header, fieldsSizeAt);
    return headerSize + (fields + 7) / 8 * 8 + numberAt(header, bodySizeAt);
}

// A method's return with four unsigned 64-bit numbers. It holds the fields REPLY_SERIAL, still
// empty, and SIGNATURE.
std::string makeAnswer(const Values& values) {
    using namespace std::string_literals;
    std::string message =
        "l\2\1\1\0\0\0\0\0\0\0\0\0\0\0\0"s
        "\5\1u\0\0\0\0\0"s
        "\10\1g\0\4tttt\0"s;
    putNumber(message, bodySizeAt, sizeof(values));
    putNumber(message, fieldsSizeAt, static_cast<std::uint32_t>(message.size() - headerSize));
    message.resize((message.size() + 7) / 8 * 8);
    message.append(reinterpret_cast<const char*>(values.data()), sizeof(values));
    return message;
}

} // namespace

// The client sends all it has to say in one go, and is told in one go that everything was right:
// its identity was asked for and accepted, and descriptors may be passed.
BusPeer::BusPeer()
    : _authentication("DATA\r\nOK " + std::string(32, '1') + "\r\nAGREE_UNIX_FD\r\n") {
    for (std::size_t i = 0; i < answerCount; ++i) {
        _answers.push_back(makeAnswer(valuesOf(i)));
    }
}

bool BusPeer::isComplete(std::string_view received) const {
    if (_isAuthenticated) {
        return received.size() >= headerSize && received.size() >= messageSize(received);
    }
    return received.size() >= endOfAuthentication.size() &&
           received.substr(received.size() - endOfAuthentication.size()) == endOfAuthentication;
}

const std::string& BusPeer::answer(std::string_view request) {
    if (_isAuthenticated) {
        return answerCall(request);
    }
    _isAuthenticated = true;
    return _authentication;
}

const std::string& BusPeer::answerCall(std::string_view call) {
    if (call.size() != messageSize(call) || call[0] != 'l' || call[1] != 1) {
        throw std::runtime_error("not one method call");
    }
    std::string& answer = _answers[_calls++ % answerCount];
    putNumber(answer, serialAt, _calls);
    putNumber(answer, replySerialAt, numberAt(call, serialAt));
    return answer;
}

} // namespace exchange
