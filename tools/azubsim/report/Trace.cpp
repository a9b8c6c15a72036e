#include "tools/azubsim/report/Trace.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <ostream>
#include <utility>
#include <vector>

#include "tools/common/Number.h"

namespace azubsim {

namespace {

using Json = nlohmann::ordered_json;

constexpr int processId = 1;
constexpr std::size_t maxEventText = 1000;

std::string eventLine(const Json& event) {
    return event.dump(-1, ' ', true, Json::error_handler_t::replace) + '\n';
}

Json name(const char* what, int client, const std::string& text) {
    return {{"ph", "M"},
            {"name", what},
            {"pid", processId},
            {"tid", client},
            {"args", {{"name", text}}}};
}

// The fields that every event of an exchange has.
Json event(const char* phase, const std::string& name, int client, tools::Time time) {
    return {
        {"ph", phase}, {"name", name}, {"pid", processId}, {"tid", client}, {"ts", time.count()}};
}

Json arguments(const Exchange& exchange, const Description& description) {
    Json arguments;
    for (const auto& [name, text] :
         {std::pair("request", exchange.request), std::pair("verdict", description.verdict),
          std::pair("argument", description.argument), std::pair("message", description.message),
          std::pair("after", description.after), std::pair("fault", exchange.fault)}) {
        if (!text.empty()) {
            arguments[name] = text.substr(0, maxEventText);
        }
    }
    arguments["engine_ms"] =
        tools::rounded(static_cast<double>(exchange.engineTook.count()) / 1000);
    return arguments;
}

// The figures of an exchange by the names of their curves.
std::vector<std::pair<const char*, Json>> figures(const Description& description) {
    std::vector<std::pair<const char*, Json>> all;
    const auto add = [&](const char* curve, const auto& figure) {
        if (figure) {
            all.emplace_back(curve, *figure);
        }
    };
    add("audio latency", description.latencyMs);
    add("jitter depth", description.jitterMs);
    add("margin", description.marginMs);
    return all;
}

} // namespace

Trace::Trace(std::ostream& stream) : _stream(stream) {
    _stream << "[\n" << eventLine(name("process_name", 0, "azubsim"));
}

void Trace::add(const Exchange& exchange) {
    const auto [last, isNew] = _ends.try_emplace(exchange.client, exchange.time);
    if (isNew) {
        const std::string client = "client " + std::to_string(exchange.client);
        _stream << ',' << eventLine(name("thread_name", exchange.client, client));
    }
    // A client can send a request before it has the answer to the previous one, but slices of a
    // track must not overlap.
    const tools::Time start = std::max(exchange.time, last->second);
    const tools::Time end =
        std::max(start, exchange.time + std::max(exchange.replyTook(), exchange.engineTook));
    last->second = end;
    const Description description = describe(exchange);
    Json slice = event("X", description.command, exchange.client, start);
    slice["dur"] = (end - start).count();
    slice["args"] = arguments(exchange, description);
    const auto curves = figures(description);
    for (const auto& [curve, ms] : curves) {
        slice["args"][curve] = ms;
    }
    _stream << ',' << eventLine(slice);
    for (const auto& [curve, ms] : curves) {
        Json counter = event("C", curve, exchange.client, end);
        counter["args"] = {{"ms", ms}};
        _stream << ',' << eventLine(counter);
    }
    if (!exchange.fault.empty()) {
        Json mark = event("i", exchange.fault, exchange.client, start);
        mark["s"] = "t"; // Only on the client's track.
        _stream << ',' << eventLine(mark);
    }
}

void Trace::end() {
    _stream << "]\n";
}

} // namespace azubsim
