#include "tools/azubsim/Trace.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace azubsim {

namespace {

using Json = nlohmann::ordered_json;
using std::chrono::duration_cast;
using std::chrono::microseconds;

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
Json event(const char* phase, const std::string& name, const Exchange& exchange,
           microseconds time) {
    return {{"ph", phase},
            {"name", name},
            {"pid", processId},
            {"tid", exchange.client},
            {"ts", time.count()}};
}

Json arguments(const Exchange& exchange, const Summary& summary) {
    Json arguments = {{"request", exchange.request.substr(0, maxEventText)},
                      {"verdict", summary.verdict}};
    const auto addText = [&](const char* name, const std::string& text) {
        if (!text.empty()) {
            arguments[name] = text.substr(0, maxEventText);
        }
    };
    const auto addFigure = [&](const char* name, const auto& figure) {
        if (figure) {
            arguments[name] = *figure;
        }
    };
    addText("argument", summary.argument);
    addText("message", summary.message);
    addText("after", summary.after);
    addText("fault", exchange.fault);
    addFigure("latency_ms", summary.latencyMs);
    addFigure("jitter_ms", summary.jitterMs);
    addFigure("margin_ms", summary.marginMs);
    arguments["engine_ms"] = static_cast<double>(exchange.engineTook.count()) / 1000;
    return arguments;
}

Json slice(const Exchange& exchange, const Summary& summary, microseconds start, microseconds end) {
    Json slice = event("X", summary.command, exchange, start);
    slice["dur"] = (end - start).count();
    slice["args"] = arguments(exchange, summary);
    return slice;
}

std::string counters(const Exchange& exchange, const Summary& summary, microseconds time) {
    std::string lines;
    const auto add = [&](const char* curve, const auto& value) {
        if (value) {
            Json counter = event("C", curve, exchange, time);
            counter["args"] = {{"ms", *value}};
            lines += ',' + eventLine(counter);
        }
    };
    add("audio latency", summary.latencyMs);
    add("jitter depth", summary.jitterMs);
    add("margin", summary.marginMs);
    return lines;
}

std::string mark(const Exchange& exchange, microseconds time) {
    if (exchange.fault.empty()) {
        return "";
    }
    Json mark = event("i", exchange.fault, exchange, time);
    mark["s"] = "t"; // Only on the client's track.
    return ',' + eventLine(mark);
}

} // namespace

Trace::~Trace() {
    _file.write("]\n");
}

bool Trace::open(const std::string& path, bool force, std::string& error) {
    if (!_file.open(path, force, error)) {
        return false;
    }
    error = "the file cannot be written";
    return _file.write("[\n" + eventLine(name("process_name", 0, "azubsim")));
}

bool Trace::add(const Exchange& exchange) {
    if (!_file.isOpen()) {
        return true;
    }
    const auto time = duration_cast<microseconds>(exchange.time.time_since_epoch());
    const auto [last, isNew] = _ends.try_emplace(exchange.client, time);
    std::string lines;
    if (isNew) {
        const std::string client = "client " + std::to_string(exchange.client);
        lines = ',' + eventLine(name("thread_name", exchange.client, client));
    }
    // A client can send a request before it has the answer to the previous one, but slices of a
    // track must not overlap.
    const microseconds start = std::max(time, last->second);
    const microseconds end =
        std::max(start, time + std::max(exchange.replyTook(), exchange.engineTook));
    last->second = end;
    const Summary summary = summarize(exchange);
    lines += ',' + eventLine(slice(exchange, summary, start, end));
    lines += counters(exchange, summary, end) + mark(exchange, start);
    return _file.write(lines);
}

} // namespace azubsim
