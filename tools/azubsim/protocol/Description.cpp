#include "tools/azubsim/protocol/Description.h"

#include <cstring>

#include "tools/azubsim/protocol/Messages.h"
#include "tools/common/Error.h"

namespace azubsim {

namespace {

std::string count(std::size_t bytes) {
    return '(' + std::to_string(bytes) + " bytes)";
}

std::string joined(const std::string& first, const std::string& second) {
    return first + (first.empty() || second.empty() ? "" : ", ") + second;
}

void describeAnswer(const Request& request, const Answer& answer, Description& description) {
    if (!request.command.empty() && answer.command != request.command) {
        description.verdict = "answer to another command";
        return;
    }
    if (!answer.verdict.message.empty()) {
        description.message = answer.verdict.message;
    }
    if (answer.verdict.code != Verdict::success) {
        description.verdict = std::to_string(answer.verdict.code);
        return;
    }
    description.verdict = "ok";
    description.marginMs = request.marginMs;
    if (const auto& timestamps = answer.timestamps) {
        description.latencyMs = tools::msBetween(timestamps->capture, timestamps->rendering);
        description.jitterMs = timestamps->jitterDepthMs;
    }
}

void describeReply(const Request& request, const Exchange& exchange, Description& description) {
    const std::string bytes = exchange.reply.bytes();
    const std::string end = exchange.reply.closes ? "closed" : "";
    const std::size_t all = bytes.size() + exchange.leftOut;
    const std::size_t size = bytes.find(endMarker);
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
    const Request request = parseRequest(exchange.request);
    description.command = request.command.empty() ? "bad request" : request.command;
    description.argument = request.marginMs ? std::to_string(*request.marginMs) : "";
    description.message = request.problem;
    describeReply(request, exchange, description);
    return description;
}

std::optional<Description> describeSaid(const Exchange& exchange) {
    if (exchange.said.empty() || exchange.said == exchange.reply.bytes()) {
        return std::nullopt;
    }
    Exchange unspoiled = exchange;
    unspoiled.reply = {{{noWait, exchange.said}}};
    return describe(unspoiled);
}

} // namespace azubsim
