#include "tools/azubsim/Summary.h"

#include <cstring>

#include "tools/azubsim/Answer.h"
#include "tools/azubsim/Request.h"

namespace azubsim {

namespace {

std::string count(std::size_t bytes) {
    return '(' + std::to_string(bytes) + " bytes)";
}

const char* endText(Reply::End end) {
    switch (end) {
        case Reply::End::Open: break;
        case Reply::End::Close: return "closed";
        case Reply::End::Reset: return "reset";
    }
    return "";
}

std::string joined(const std::string& first, const std::string& second) {
    return first + (first.empty() || second.empty() ? "" : ", ") + second;
}

double latencyMs(const Timestamps& timestamps) {
    constexpr double ntpUnitsPerMs = 4294967.296;
    return static_cast<double>(
               static_cast<std::int64_t>(timestamps.rendering - timestamps.capture)) /
           ntpUnitsPerMs;
}

void describeRequest(const Request& request, Summary& summary) {
    switch (request.command) {
        case Request::Command::GetAudioTs: summary.command = "GetAudioTs"; break;
        case Request::Command::SetAudioDelay:
            summary.command = "SetAudioDelay";
            summary.argument = std::to_string(request.delayMs);
            break;
    }
}

void describeAnswer(const std::optional<Request>& request, const Answer& answer, Summary& summary) {
    constexpr int success = 1000;
    const bool hasTimestamps = answer.timestamps.has_value();
    if (request && hasTimestamps != (request->command == Request::Command::GetAudioTs)) {
        summary.verdict = "answer to another command";
        return;
    }
    summary.verdict = answer.code == success ? "ok" : std::to_string(answer.code);
    summary.message = answer.message;
    if (answer.code != success) {
        return;
    }
    if (hasTimestamps) {
        summary.latencyMs = latencyMs(*answer.timestamps);
        summary.jitterMs = answer.timestamps->jitterDepthMs;
    } else if (request) {
        summary.marginMs = request->delayMs;
    }
}

void describeReply(const std::optional<Request>& request, const Reply& reply, Summary& summary) {
    const std::string bytes = reply.bytes();
    const std::string end = endText(reply.end);
    const std::size_t size = bytes.find(endMarker);
    if (size == std::string::npos) {
        summary.verdict =
            joined(bytes.empty() ? "no answer" : "unfinished answer " + count(bytes.size()), end);
        return;
    }
    const std::size_t more = bytes.size() - size - std::strlen(endMarker);
    summary.after = joined(more > 0 ? std::to_string(more) + " more bytes" : "", end);
    Answer answer;
    if (parseAnswer(bytes.substr(0, size), answer)) {
        describeAnswer(request, answer, summary);
    } else {
        summary.verdict = "invalid answer " + count(size);
    }
}

} // namespace

Summary summarize(const Exchange& exchange) {
    Summary summary;
    if (exchange.isUnasked()) {
        summary.command = "no request";
        summary.argument = count(exchange.reply.bytes().size());
        summary.verdict = endText(exchange.reply.end);
        return summary;
    }
    std::optional<Request> request(std::in_place);
    std::string error;
    if (parseRequest(exchange.request, *request, error)) {
        describeRequest(*request, summary);
    } else {
        request.reset();
        summary.command = "bad request";
    }
    describeReply(request, exchange.reply, summary);
    if (!request && summary.message.empty()) {
        summary.message = error;
    }
    return summary;
}

} // namespace azubsim
