#include "tools/azubsim/Replay.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstring>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

#include "tools/azubsim/Recorder.h"

namespace azubsim {

namespace {

using nlohmann::json;
using std::chrono::microseconds;

constexpr microseconds maxWait = Recorder::maxWait;

// Thrown while a file is read; the text is for the user.
using BadFile = std::runtime_error;

const json& member(const json& object, const char* name, bool (json::*isRight)() const noexcept) {
    const auto found = object.find(name);
    if (found == object.end() || !((*found).*isRight)()) {
        throw BadFile(std::string(name) + " is missing or has the wrong type");
    }
    return *found;
}

// The reverse of how the recorder writes bytes: each character is the byte with its number.
std::string toBytes(const std::string& text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto first = static_cast<unsigned char>(text[i]);
        if (first < 0x80) {
            bytes += text[i];
        } else if (first <= 0xC3) {
            // Valid UTF-8 has a second byte here, and the parser has checked that.
            const auto second = static_cast<unsigned char>(text[++i]);
            bytes += static_cast<char>(((first & 0x03) << 6) | (second & 0x3F));
        } else {
            throw BadFile("bytes has a character above U+00FF");
        }
    }
    return bytes;
}

microseconds wait(const json& piece) {
    const double ms = member(piece, "after_ms", &json::is_number).get<double>();
    if (ms < 0 || ms > std::chrono::duration<double, std::milli>(maxWait).count()) {
        throw BadFile("after_ms is not from 0 to 3600000");
    }
    return microseconds(std::llround(ms * 1000));
}

Reply::End end(const json& object) {
    const std::string name = member(object, "end", &json::is_string);
    for (const auto end : {Reply::End::Open, Reply::End::Close, Reply::End::Reset}) {
        if (name == Recorder::endName(end)) {
            return end;
        }
    }
    throw BadFile("end is not open, close or reset");
}

Exchange parseExchange(const std::string& line) {
    const json object = json::parse(line, nullptr, false);
    if (!object.is_object()) {
        throw BadFile("not a JSON object");
    }
    Exchange exchange;
    exchange.client = member(object, "client", &json::is_number_integer);
    exchange.isComplete = member(object, "complete", &json::is_boolean);
    exchange.request = toBytes(member(object, "request", &json::is_string));
    for (const json& piece : member(object, "answer", &json::is_array)) {
        exchange.reply.pieces.push_back(
            {wait(piece), toBytes(member(piece, "bytes", &json::is_string))});
    }
    exchange.reply.end = end(object);
    return exchange;
}

void checkHeader(const std::string& line) {
    const json object = json::parse(line, nullptr, false);
    const auto format = object.find("format");
    if (format == object.end() || *format != Recorder::format) {
        throw BadFile("line 1 is not the header of a recording");
    }
    const auto version = object.find("version");
    if (version == object.end() || !version->is_number()) {
        throw BadFile("line 1 has no version");
    }
    if (*version != Recorder::version) {
        throw BadFile("it has version " + version->dump() + ", but only version " +
                      std::to_string(Recorder::version) + " can be replayed");
    }
}

// The answers of a recording, in order.
class Answers {
public:
    void add(Exchange exchange) {
        const auto last = _last.find(exchange.client);
        if (exchange.isUnasked() && last != _last.end()) {
            append(_replies[last->second], exchange.reply);
        } else if (exchange.isComplete) {
            _last[exchange.client] = _replies.size();
            _replies.push_back(std::move(exchange.reply));
        }
    }

    std::vector<Reply>& replies() { return _replies; }

private:
    static void append(Reply& reply, const Reply& more) {
        reply.pieces.insert(reply.pieces.end(), more.pieces.begin(), more.pieces.end());
        reply.end = more.end;
    }

    std::vector<Reply> _replies;
    std::map<int, std::size_t> _last; // The index in `_replies` for each client.
};

void join(Reply& reply) {
    if (!reply.pieces.empty()) {
        reply.pieces = {{microseconds(0), reply.bytes()}};
    }
}

// Ignores a last line that was cut short, and says so in `note`.
std::vector<Reply> read(std::istream& file, std::string& note) {
    std::string line;
    std::getline(file, line);
    checkHeader(line);
    Answers answers;
    for (std::size_t number = 2; std::getline(file, line); ++number) {
        try {
            answers.add(parseExchange(line));
        } catch (const BadFile& e) {
            const std::string name = "line " + std::to_string(number);
            if (!file.eof()) {
                throw BadFile(name + " is not a recorded exchange: " + e.what());
            }
            note = name + " is unfinished and is left out";
        }
    }
    if (answers.replies().empty()) {
        throw BadFile("it contains no exchanges");
    }
    return std::move(answers.replies());
}

} // namespace

bool Replay::open(const std::string& path, bool isTimed, std::string& error) {
    std::ifstream file(path, std::ios::binary);
    if (!file.is_open()) {
        error = std::strerror(errno);
        return false;
    }
    try {
        _replies = read(file, _note);
    } catch (const BadFile& e) {
        error = e.what();
        return false;
    }
    if (!isTimed) {
        std::for_each(_replies.begin(), _replies.end(), join);
    }
    return true;
}

Reply Replay::next() {
    return hasEnded() ? Reply{{}, Reply::End::Close} : std::move(_replies[_next++]);
}

} // namespace azubsim
