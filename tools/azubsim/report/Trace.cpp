#include "tools/azubsim/report/Trace.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <ostream>
#include <utility>

#include "tools/azubsim/protocol/Description.h"
#include "tools/common/Number.h"

namespace azubsim {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t maxEventText = 1000;

// The figures by the names of their curves.
Json figures(const Description& description) {
    Json figures = Json::object();
    const auto add = [&](const char* curve, const auto& ms) {
        if (ms) {
            figures[curve] = *ms;
        }
    };
    add("audio latency", description.latencyMs);
    add("jitter depth", description.jitterMs);
    add("margin", description.marginMs);
    return figures;
}

Json arguments(const Exchange& exchange, const Description& description) {
    Json arguments = figures(description);
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

} // namespace

Trace::Trace(std::ostream& stream) : _stream(stream) {
    _stream << R"([
{"ph":"M","name":"process_name","pid":1,"tid":0,"args":{"name":"azubsim"}}
)";
}

void Trace::add(const Exchange& exchange) {
    const int client = exchange.client;
    const auto [last, isNew] = _ends.try_emplace(client, exchange.time);
    if (isNew) {
        addEvent("M", "thread_name", client, exchange.time,
                 {{"args", {{"name", "client " + std::to_string(client)}}}});
    }
    // A client can send a request before it has the answer to the previous one, but slices of a
    // track must not overlap.
    const tools::Time start = std::max(exchange.time, last->second);
    const tools::Time end =
        std::max(start, exchange.time + std::max(exchange.replyTook(), exchange.engineTook));
    last->second = end;
    const Description description = describe(exchange);
    addEvent("X", description.command, client, start,
             {{"dur", (end - start).count()}, {"args", arguments(exchange, description)}});
    const Json curves = figures(description);
    for (const auto& [curve, ms] : curves.items()) {
        addEvent("C", curve, client, end, {{"args", {{"ms", ms}}}});
    }
    if (!exchange.fault.empty()) {
        // Only on the client's track.
        addEvent("i", exchange.fault, client, start, {{"s", "t"}});
    }
}

void Trace::addEvent(const char* phase, const std::string& name, int client, tools::Time time,
                     const Json& more) {
    Json event{{"ph", phase}, {"name", name}, {"pid", 1}, {"tid", client}, {"ts", time.count()}};
    event.update(more);
    _stream << ',' << event.dump(-1, ' ', true, Json::error_handler_t::replace) << '\n';
}

void Trace::end() {
    _stream << "]\n";
}

} // namespace azubsim
