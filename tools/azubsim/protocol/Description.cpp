#include "tools/azubsim/protocol/Description.h"

#include <cstring>

#include "tools/azubsim/protocol/Answer.h"
#include "tools/azubsim/protocol/Request.h"
#include "tools/common/Error.h"

namespace azubsim {

namespace {

std::string count(std::size_t bytes) {
    return '(' + std::to_string(bytes) + " bytes)";
}

std::string joined(const std::string& first, const std::string& second) {
    return first + (first.empty() || second.empty() ? "" : ", ") + second;
}

void describeAnswer(const std::optional<Request>& request, const Answer& answer,
                    Description& description) {
    if (request && answer.command != request->command) {
        description.verdict = "answer to another command";
        return;
    }
    const bool isAccepted = answer.verdict.code == Verdict::success;
    description.verdict = isAccepted ? "ok" : std::to_string(answer.verdict.code);
    description.message = answer.verdict.message;
    if (isAccepted && answer.timestamps) {
        description.latencyMs =
            tools::msBetween(answer.timestamps->capture, answer.timestamps->rendering);
        description.jitterMs = answer.timestamps->jitterDepthMs;
    }
    if (isAccepted && request && request->kind == Kind::SetAudioDelay) {
        description.marginMs = request->delayMs;
    }
}

void describeReply(const std::optional<Request>& request, const Exchange& exchange,
                   Description& description) {
    const std::string bytes = exchange.reply.bytes();
    const std::string end = exchange.reply.closes ? "closed" : "";
    const std::size_t size = bytes.find(endMarker);
    const std::size_t all = bytes.size() + exchange.leftOut;
    if (size == std::string::npos) {
        const std::string what = exchange.leftOut > 0 ? "long answer " : "unfinished answer ";
        description.verdict = joined(all == 0 ? "no answer" : what + count(all), end);
        return;
    }
    const std::size_t more = all - size - std::strlen(endMarker);
    description.after = joined(more > 0 ? std::to_string(more) + " more bytes" : "", end);
    try {
        describeAnswer(request, parseAnswer(bytes.substr(0, size)), description);
    } catch (const tools::Error& e) {
        description.verdict = "invalid answer " + count(size);
        description.message = e.what();
    }
}

} // namespace

Description describe(const Exchange& exchange) {
    Description description;
    if (exchange.isUnasked()) {
        description.command = "no request";
        description.argument = count(exchange.reply.bytes().size() + exchange.leftOut);
        description.verdict = exchange.reply.closes ? "closed" : "";
        return description;
    }
    std::optional<Request> request;
    std::string reason;
    try {
        request = parseRequest(exchange.request);
        description.command = request->command;
        if (request->kind == Kind::SetAudioDelay) {
            description.argument = std::to_string(request->delayMs);
        }
    } catch (const tools::Error& e) {
        description.command = "bad request";
        reason = e.what();
    }
    describeReply(request, exchange, description);
    if (description.message.empty()) {
        description.message = reason;
    }
    return description;
}

std::optional<Description> describeSaid(const Exchange& exchange) {
    if (exchange.said.empty() || exchange.said == exchange.reply.bytes()) {
        return std::nullopt;
    }
    Exchange unspoiled = exchange;
    unspoiled.reply = {{{std::chrono::microseconds(0), exchange.said}}, false};
    return describe(unspoiled);
}

} // namespace azubsim
