#include "tools/azubsim/report/Recording.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstring>
#include <nlohmann/json.hpp>
#include <utility>

#include "tools/common/Error.h"
#include "tools/common/Number.h"

namespace azubsim {

namespace {

using Json = nlohmann::ordered_json;
using std::chrono::microseconds;
using tools::Error;
using tools::require;

const std::string firstLineStart = R"({"format":"azubsim recording","version":3)";
constexpr double maxWaitMs = 3600000;

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

std::string toBytes(const std::string& text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto first = static_cast<unsigned char>(text[i]);
        if (first < 0x80) {
            bytes += text[i];
        } else {
            require(first <= 0xC3, "bytes has a character above U+00FF");
            // Valid UTF-8 has a second byte here, and the parser has checked that.
            const auto second = static_cast<unsigned char>(text[++i]);
            bytes += static_cast<char>(((first & 0x03) << 6) | (second & 0x3F));
        }
    }
    return bytes;
}

// No longer than what can be read again.
double toMs(microseconds time) {
    return std::min(tools::rounded(static_cast<double>(time.count()) / 1000), maxWaitMs);
}

microseconds waitOf(const Json& object, const char* key) {
    const double ms = object.at(key).get<double>();
    require(ms >= 0 && ms <= maxWaitMs, std::string(key) + " is not from 0 to 3600000");
    return microseconds(std::llround(ms * 1000));
}

std::string bytesOf(const Json& object, const char* key) {
    return toBytes(object.at(key).get<std::string>());
}

Exchange toExchange(const Json& object) {
    Exchange exchange;
    const double seconds = object.at("time").get<double>();
    require(std::abs(seconds) < 1e11, "time is out of range");
    exchange.time = microseconds(std::llround(seconds * 1e6));
    // Other than `get`, this refuses numbers that are not whole, which may be out of range.
    using Integer = const Json::number_integer_t&;
    exchange.client = static_cast<int>(object.at("client").get_ref<Integer>());
    exchange.request = bytesOf(object, "request");
    exchange.isComplete = object.at("complete").get<bool>();
    for (const Json& piece : object.at("answer")) {
        exchange.reply.pieces.push_back({waitOf(piece, "after_ms"), bytesOf(piece, "bytes")});
    }
    exchange.reply.closes = object.at("closes").get<bool>();
    exchange.fault = bytesOf(object, "fault");
    exchange.said = bytesOf(object, "said");
    exchange.leftOut = static_cast<std::size_t>(object.at("left_out").get_ref<Integer>());
    exchange.engineTook = waitOf(object, "engine_ms");
    return exchange;
}

std::string firstLine() {
    return firstLineStart + ",\"made\":\"" + tools::isoTime(tools::now(), 6) + "\"}\n";
}

void checkFirstLine(const std::string& line) {
    require(line.compare(0, firstLineStart.size(), firstLineStart) == 0,
            "it is not the header of a recording of version 3");
}

std::string toLine(const Exchange& exchange) {
    Json pieces = Json::array();
    for (const Reply::Piece& piece : exchange.reply.pieces) {
        pieces.push_back({{"after_ms", toMs(piece.wait)}, {"bytes", toCharacters(piece.bytes)}});
    }
    Json object;
    object["time"] = static_cast<double>(exchange.time.count()) / 1e6;
    object["utc"] = tools::isoTime(exchange.time, 6);
    object["client"] = exchange.client;
    object["request"] = toCharacters(exchange.request);
    object["complete"] = exchange.isComplete;
    object["answer"] = pieces;
    object["closes"] = exchange.reply.closes;
    object["fault"] = toCharacters(exchange.fault);
    object["said"] = toCharacters(exchange.said);
    object["left_out"] = exchange.leftOut;
    object["engine_ms"] = toMs(exchange.engineTook);
    // ASCII only, so that every program reads the same characters.
    return object.dump(-1, ' ', true) + '\n';
}

Exchange toExchange(const std::string& line) {
    try {
        return toExchange(Json::parse(line));
    } catch (const Json::exception& e) {
        throw Error(e.what());
    }
}

} // namespace

Recorder::Recorder(const std::string& path)
    : _path(path), _file(std::fopen(path.c_str(), "wxe"), std::fclose) {
    write(firstLine());
}

void Recorder::add(const Exchange& exchange) {
    if (_file) {
        write(toLine(exchange));
    }
}

void Recorder::write(const std::string& line) {
    if (!_file || std::fputs(line.c_str(), _file.get()) < 0 || std::fflush(_file.get()) != 0) {
        const std::string reason = std::strerror(errno);
        _file.reset();
        throw Error("cannot record to " + _path + ": " + reason);
    }
}

Recording::Recording(const std::string& path)
    : _path(path == "-" ? "/dev/stdin" : path), _file(_path) {
    require(_file.is_open(), "cannot read " + _path + ": " + std::strerror(errno));
}

std::optional<Exchange> Recording::next() {
    try {
        if (_lines == 0 && readLine()) {
            checkFirstLine(std::exchange(_line, ""));
        }
        if (_lines == 0 || !readLine()) {
            return std::nullopt;
        }
        return toExchange(std::exchange(_line, ""));
    } catch (const Error& e) {
        throw Error("cannot read " + _path + ": line " + std::to_string(_lines) + ": " + e.what());
    }
}

// Returns false at the end of what is there now.
bool Recording::readLine() {
    std::string more;
    // After an end, more may have been written.
    _file.clear();
    std::getline(_file, more);
    require(!_file.bad(), std::strerror(errno));
    _line += more;
    const bool isWhole = _file.good();
    _lines += isWhole ? 1 : 0;
    return isWhole;
}

} // namespace azubsim
