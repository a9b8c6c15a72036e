#include "tools/azubsim/report/Reports.h"

#include <algorithm>

#include "tools/azubsim/protocol/Description.h"
#include "tools/common/Error.h"
#include "tools/common/Text.h"

namespace azubsim {

namespace {

using tools::printed;

constexpr std::size_t maxText = 200;

std::string padded(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

// Text from outside as it may be shown on a terminal.
std::string shown(const std::string& text) {
    return tools::printable(text.substr(0, maxText)) + (text.size() > maxText ? "..." : "");
}

// The verdict, and the figures or the message.
std::string outcome(const Description& description) {
    std::string text = padded(description.verdict, 4);
    if (description.latencyMs) {
        text += printed(" latency %5.1f", *description.latencyMs);
    }
    if (description.jitterMs) {
        text += printed(" jitter %3llu", static_cast<unsigned long long>(*description.jitterMs));
    }
    if (description.marginMs) {
        text += printed(" margin %llu", static_cast<unsigned long long>(*description.marginMs));
    }
    if (!description.message.empty()) {
        text += " \"" + shown(description.message) + '"';
    }
    return text;
}

std::string withoutBlanksAtTheEnd(std::string text) {
    text.resize(text.find_last_not_of(' ') + 1);
    return text;
}

} // namespace

std::string exchangeLine(const Exchange& exchange) {
    const Description description = describe(exchange);
    std::string asked = shown(description.command);
    if (!description.argument.empty()) {
        asked += ' ' + description.argument;
    }
    std::string line = tools::timeOfDay(exchange.time) + printed(" #%-5d", exchange.client) +
                       padded(asked, 18) + padded(outcome(description), 30);
    if (exchange.engineTook.count() > 0) {
        line += printed(" %7.3f ms", static_cast<double>(exchange.engineTook.count()) / 1000);
    }
    if (!description.after.empty()) {
        line += "  then " + description.after;
    }
    if (!exchange.fault.empty()) {
        line += "  fault: " + shown(exchange.fault);
    }
    if (const auto said = describeSaid(exchange)) {
        line += "  engine: " + withoutBlanksAtTheEnd(outcome(*said));
    }
    return withoutBlanksAtTheEnd(line);
}

void Reports::add(const Exchange& exchange) {
    ++_exchanges;
    _spoiled += exchange.said.empty() ? 0 : 1;
    if (!isQuiet) {
        _screen.say(exchangeLine(exchange));
    }
    try {
        if (recorder) {
            recorder->add(exchange);
        }
    } catch (const tools::Error& e) {
        _failure = "the recording is not complete";
        _screen.warn(std::string(e.what()) + "; the recording ends here");
    }
}

std::string Reports::tally(int clients) const {
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - _start;
    return printed("%lu exchanges, %lu spoiled, %d clients, %.1f s", _exchanges, _spoiled, clients,
                   passed.count());
}

} // namespace azubsim
