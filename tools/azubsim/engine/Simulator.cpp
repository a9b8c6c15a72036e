#include "tools/azubsim/engine/Simulator.h"

#include "tools/azubsim/protocol/Names.h"

namespace azubsim {

namespace {

// Nothing if the request is bad or its command unknown.
std::optional<Answer> carryOut(AudioEngine& engine, const Request& request) {
    const auto now = AudioEngine::Clock::now();
    Answer answer{request.command, {}, {}};
    if (request.command == names::getAudioTs) {
        answer.verdict = engine.timestamps(now, answer.timestamps.emplace());
    } else if (request.marginMs) {
        answer.verdict = engine.setMargin(*request.marginMs, now);
    } else {
        return std::nullopt;
    }
    return answer;
}

} // namespace

void simulate(AudioEngine& engine, FaultPlan& faults, Exchange& exchange) {
    const auto answer = carryOut(engine, parseRequest(exchange.request));
    if (!answer) {
        exchange.reply = {{}, true};
        return;
    }
    const std::string text = print(*answer);
    const auto fault = faults.next(exchange.client, answer->command);
    if (fault) {
        exchange.fault = fault->text();
        exchange.said = text + endMarker;
    }
    exchange.reply = fault ? faults.apply(*fault, text) : deliver(text);
}

} // namespace azubsim
