#include "tools/azubsim/engine/Simulator.h"

#include "tools/azubsim/protocol/Names.h"

namespace azubsim {

void Simulator::answer(Exchange& exchange) {
    const auto answer = carryOut(parseRequest(exchange.request));
    if (!answer) {
        exchange.reply = {{}, true};
        return;
    }
    const std::string text = print(*answer);
    const auto fault = _faults.next(exchange.client, answer->command);
    if (fault) {
        exchange.fault = fault->text();
        exchange.said = text + endMarker;
    }
    exchange.reply = fault ? _faults.apply(*fault, text) : deliver(text);
}

std::optional<Answer> Simulator::carryOut(const Request& request) {
    const auto now = AudioEngine::Clock::now();
    Answer answer{request.command, {}, {}};
    if (request.command == names::getAudioTs) {
        answer.verdict = _engine.timestamps(now, answer.timestamps.emplace());
    } else if (request.marginMs) {
        answer.verdict = _engine.setMargin(*request.marginMs, now);
    } else {
        return std::nullopt;
    }
    return answer;
}

} // namespace azubsim
