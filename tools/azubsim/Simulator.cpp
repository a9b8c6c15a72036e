#include "tools/azubsim/Simulator.h"

#include "tools/azubsim/Document.h"

namespace azubsim {

Reply Simulator::answer(int client, const std::string& request) {
    Exchange exchange;
    exchange.client = client;
    exchange.time = std::chrono::system_clock::now();
    exchange.request = request;
    if (_replay) {
        exchange.reply = answerFromRecording();
    } else {
        const std::optional<Fault> fault = _faults.next();
        exchange.reply = answerAsEngine(request, fault);
        exchange.fault = fault ? fault->text() : "";
    }
    _reports.add(exchange);
    return exchange.reply;
}

Reply Simulator::answerFromRecording() {
    const bool hadEnded = _replay->hasEnded();
    Reply reply = _replay->next();
    if (_replay->hasEnded() && !hadEnded) {
        _reports.screen().say(
            "azubsim: the recording has ended; further requests close the connection");
    }
    return reply;
}

Reply Simulator::answerAsEngine(const std::string& text, const std::optional<Fault>& fault) {
    Request request;
    std::string error;
    if (!parseRequest(text, request, error)) {
        _reports.screen().warn("bad request, connection closed: " + error);
        return {{}, Reply::End::Close};
    }
    const std::string answer = carryOut(request);
    return fault ? _faults.apply(*fault, answer) : deliver(answer);
}

std::string Simulator::carryOut(const Request& request) {
    const auto now = AudioEngine::Clock::now();
    switch (request.command) {
        case Request::Command::GetAudioTs: break;
        case Request::Command::SetAudioDelay:
            return delayAnswer(_engine.setMargin(request.delayMs, now));
    }
    Timestamps timestamps;
    const Verdict verdict = _engine.timestamps(now, timestamps);
    return timestampsAnswer(timestamps, verdict);
}

} // namespace azubsim
