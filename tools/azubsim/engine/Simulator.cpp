#include "tools/azubsim/engine/Simulator.h"

#include "tools/azubsim/protocol/Document.h"
#include "tools/azubsim/protocol/Request.h"
#include "tools/common/Error.h"

namespace azubsim {

void Simulator::answer(Exchange& exchange) {
    Request request;
    std::string answer;
    try {
        request = parseRequest(exchange.request);
        answer = carryOut(request);
    } catch (const tools::Error&) {
        exchange.reply = {{}, true};
        return;
    }
    const auto fault = _faults.next(exchange.client, request.command);
    if (!fault) {
        exchange.reply = deliver(answer);
        return;
    }
    exchange.fault = fault->text();
    exchange.said = answer + endMarker;
    exchange.reply = _faults.apply(*fault, answer);
}

std::string Simulator::carryOut(const Request& request) {
    const auto now = AudioEngine::Clock::now();
    switch (request.kind) {
        case Kind::GetAudioTs: break;
        case Kind::SetAudioDelay: return delayAnswer(_engine.setMargin(request.delayMs, now));
        case Kind::Other: throw tools::Error("unknown command '" + request.command + "'");
    }
    Timestamps timestamps;
    const Verdict verdict = _engine.timestamps(now, timestamps);
    return timestampsAnswer(timestamps, verdict);
}

} // namespace azubsim
