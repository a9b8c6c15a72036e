#include "tools/azubsim/ExchangeLine.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>

#include "tools/azubsim/Summary.h"
#include "tools/common/Printable.h"

namespace azubsim {

namespace {

using std::chrono::system_clock;

constexpr std::size_t maxText = 200;

template <typename... Values>
std::string format(const char* form, Values... values) {
    char text[512];
    const int size = std::snprintf(text, sizeof(text), form, values...);
    return {text, std::min(static_cast<std::size_t>(size), sizeof(text) - 1)};
}

std::string padded(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

// Text from outside as it may be shown on a terminal.
std::string shown(const std::string& text) {
    return tools::printable(text.substr(0, maxText)) + (text.size() > maxText ? "..." : "");
}

std::string timeOfDay(system_clock::time_point time) {
    using std::chrono::milliseconds;
    const std::time_t seconds = system_clock::to_time_t(time);
    const auto ms = std::chrono::duration_cast<milliseconds>(time.time_since_epoch()).count();
    std::tm local{};
    localtime_r(&seconds, &local);
    return format("%02d:%02d:%02d.%03d", local.tm_hour, local.tm_min, local.tm_sec,
                  static_cast<int>(ms % 1000));
}

// The verdict, and the figures or the message.
std::string outcome(const Summary& summary) {
    std::string text = padded(summary.verdict, 4);
    if (summary.latencyMs) {
        text += format("  latency %5.1f ms", *summary.latencyMs);
    }
    if (summary.jitterMs) {
        text += format("  jitter %3llu ms", static_cast<unsigned long long>(*summary.jitterMs));
    }
    if (summary.marginMs) {
        text += format("  margin %llu ms", static_cast<unsigned long long>(*summary.marginMs));
    }
    if (!summary.message.empty()) {
        text += "  \"" + shown(summary.message) + '"';
    }
    return text;
}

} // namespace

std::string exchangeLine(const Exchange& exchange) {
    const Summary summary = summarize(exchange);
    std::string asked = summary.command;
    if (!summary.argument.empty()) {
        asked += ' ' + summary.argument;
    }
    std::string line = timeOfDay(exchange.time) +
                       padded(format("  client %d", exchange.client), 13) +
                       padded(padded(asked, 17) + "  " + outcome(summary), 56);
    if (exchange.engineTook.count() > 0) {
        line += format("  %6.3f ms", static_cast<double>(exchange.engineTook.count()) / 1000);
    }
    if (!summary.after.empty()) {
        line += "  then " + summary.after;
    }
    if (!exchange.fault.empty()) {
        line += "  fault: " + shown(exchange.fault);
    }
    line.resize(line.find_last_not_of(' ') + 1);
    return line;
}

} // namespace azubsim
