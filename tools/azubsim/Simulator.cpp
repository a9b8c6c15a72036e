#include "tools/azubsim/Simulator.h"

#include <iostream>

#include "tools/azubsim/Request.h"

namespace azubsim {

namespace {

// A longer message is truncated: a flood must not fill the terminal.
constexpr std::size_t shownBytes = 2000;

void show(int client, const char* direction, const std::string& message) {
    std::cerr << "client " << client << ' ' << direction << ' ';
    for (const char c : message.substr(0, shownBytes)) {
        if (c == '\n') {
            std::cerr << "\\n";
        } else {
            std::cerr << (c == '\0' ? '?' : c);
        }
    }
    if (message.size() > shownBytes) {
        std::cerr << "... (" << message.size() << " bytes)";
    }
    std::cerr << std::endl;
}

} // namespace

Reply Simulator::answer(int client, const std::string& request) {
    const Fault* const fault = replay ? nullptr : faults.next();
    Reply reply = replay ? replay->next() : answerAsEngine(request, fault);
    recorder.add(client, request, reply, fault != nullptr ? fault->text() : "");
    if (isVerbose) {
        show(client, "<", request);
        show(client, ">", reply.bytes());
    }
    return reply;
}

Reply Simulator::answerAsEngine(const std::string& request, const Fault* fault) {
    Request parsed;
    std::string error;
    if (!parseRequest(request, parsed, error)) {
        std::cerr << "azubsim: bad request, connection closed: " << error << std::endl;
        return {{}, Reply::End::Close};
    }
    const Document document = carryOut(parsed, fault);
    return fault != nullptr ? fault->answer(document, floodBytes) : deliver(document.print());
}

Document Simulator::carryOut(const Request& request, const Fault* fault) {
    const auto spoiled = [&](Verdict verdict) {
        if (fault != nullptr) {
            fault->spoil(verdict);
        }
        return verdict;
    };
    Timestamps timestamps;
    switch (request.command) {
        case Request::Command::GetAudioTs: break;
        case Request::Command::SetAudioDelay:
            return delayAnswer(spoiled(engine.setMargin(request.delayMs)));
    }
    const Verdict verdict = engine.timestamps(AudioEngine::Clock::now(), timestamps);
    return timestampsAnswer(timestamps, spoiled(verdict));
}

} // namespace azubsim
