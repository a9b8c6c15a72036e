#include "tools/azubsim/Recorder.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <nlohmann/json.hpp>

namespace azubsim {

namespace {

using Json = nlohmann::ordered_json;
using std::chrono::duration_cast;
using std::chrono::microseconds;
using std::chrono::system_clock;

// Writes each byte as the character with the same number, in UTF-8.
std::string toCharacters(const std::string& bytes) {
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            text += c;
        } else {
            text += static_cast<char>(0xC0 | (byte >> 6));
            text += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return text;
}

std::string iso8601(system_clock::time_point time) {
    const std::time_t seconds = system_clock::to_time_t(time);
    const auto fraction = duration_cast<microseconds>(time.time_since_epoch()).count() % 1000000;
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    char date[32];
    std::strftime(date, sizeof(date), "%Y-%m-%dT%H:%M:%S", &utc);
    char text[48];
    std::snprintf(text, sizeof(text), "%s.%06dZ", date, static_cast<int>(fraction));
    return text;
}

double toMilliseconds(microseconds time) {
    return static_cast<double>(time.count()) / 1000;
}

Json pieces(const Reply& reply) {
    Json list = Json::array();
    for (const Reply::Piece& piece : reply.pieces) {
        list.push_back(
            {{"after_ms", toMilliseconds(std::min<microseconds>(piece.wait, Recorder::maxWait))},
             {"bytes", toCharacters(piece.bytes)}});
    }
    return list;
}

double secondsSince1970(system_clock::time_point time) {
    return static_cast<double>(duration_cast<microseconds>(time.time_since_epoch()).count()) / 1e6;
}

// ASCII only, so that every program reads the same characters.
std::string line(const Json& object) {
    return object.dump(-1, ' ', true) + '\n';
}

} // namespace

const char* Recorder::endName(Reply::End end) {
    switch (end) {
        case Reply::End::Open: break;
        case Reply::End::Close: return "close";
        case Reply::End::Reset: return "reset";
    }
    return "open";
}

bool Recorder::open(const std::string& path, bool force, std::string& error) {
    if (!_file.open(path, force, error)) {
        return false;
    }
    error = "the file cannot be written";
    return _file.write(
        line({{"format", format}, {"version", version}, {"made", iso8601(system_clock::now())}}));
}

bool Recorder::add(const Exchange& exchange) {
    if (!_file.isOpen()) {
        return true;
    }
    Json object;
    object["time"] = secondsSince1970(exchange.time);
    object["utc"] = iso8601(exchange.time);
    object["client"] = exchange.client;
    object["request"] = toCharacters(exchange.request);
    object["complete"] = exchange.isComplete;
    object["answer"] = pieces(exchange.reply);
    object["end"] = endName(exchange.reply.end);
    object["fault"] = toCharacters(exchange.fault);
    object["engine_ms"] = toMilliseconds(exchange.engineTook);
    return _file.write(line(object));
}

} // namespace azubsim
