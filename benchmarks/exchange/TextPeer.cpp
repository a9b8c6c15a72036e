#include "benchmarks/exchange/TextPeer.h"

#include <stdexcept>

#include "benchmarks/exchange/Answers.h"

namespace exchange {

TextPeer::TextPeer() : _answers(textAnswers()) {}

bool TextPeer::isComplete(std::string_view received) {
    return received.size() >= 2 && received.substr(received.size() - 2) == "\n\n";
}

const std::string& TextPeer::answer(std::string_view request) {
    if (request != textRequest) {
        throw std::runtime_error("not the expected request: " + std::string(request));
    }
    return _answers[_next++ % answerCount];
}

} // namespace exchange
