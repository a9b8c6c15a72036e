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
    const bool isDelay = parsed.command == Request::Command::SetAudioDelay;
    Timestamps timestamps;
    Verdict verdict = isDelay ? engine.setMargin(parsed.delayMs)
                              : engine.timestamps(AudioEngine::Clock::now(), timestamps);
    if (fault != nullptr) {
        fault->spoil(verdict);
    }
    Document document = isDelay ? delayAnswer(verdict) : timestampsAnswer(timestamps, verdict);
    if (fault != nullptr) {
        fault->spoil(document);
        return fault->deliver(document.print(), floodBytes);
    }
    return deliver(document.print());
}

} // namespace azubsim
