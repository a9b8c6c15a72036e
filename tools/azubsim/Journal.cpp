#include "tools/azubsim/Journal.h"

#include <chrono>
#include <iostream>
#include <nlohmann/json.hpp>

namespace azubsim {

namespace {

using nlohmann::json;

double secondsSince1970() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
}

const char* endName(Reply::End end) {
    switch (end) {
        case Reply::End::Close: return "close";
        case Reply::End::Reset: return "reset";
        case Reply::End::Open: break;
    }
    return "open";
}

bool parseReply(const std::string& line, Reply& reply) {
    const json object = json::parse(line, nullptr, false);
    if (!object.is_object() || !object.contains("answer") || !object["answer"].is_string() ||
        !object.contains("end") || !object["end"].is_string()) {
        return false;
    }
    reply.pieces = {{std::chrono::microseconds(0), object["answer"]}};
    for (const Reply::End end : {Reply::End::Open, Reply::End::Close, Reply::End::Reset}) {
        if (object["end"] == endName(end)) {
            reply.end = end;
            return true;
        }
    }
    return false;
}

} // namespace

bool Recorder::open(const std::string& path) {
    _file.open(path);
    return _file.is_open();
}

void Recorder::add(int client, const std::string& request, const Reply& reply,
                   const std::string& fault) {
    if (!_file.is_open()) {
        return;
    }
    json object;
    object["time"] = secondsSince1970();
    object["client"] = client;
    object["request"] = request;
    object["answer"] = reply.bytes();
    object["end"] = endName(reply.end);
    object["fault"] = fault;
    // Requests can contain invalid UTF-8.
    _file << object.dump(-1, ' ', true, json::error_handler_t::replace) << std::endl;
    if (!_file.good()) {
        std::cerr << "azubsim: cannot write the recording; it ends here" << std::endl;
        _file.close();
    }
}

bool Replay::open(const std::string& path, std::string& error) {
    std::ifstream file(path);
    if (!file.is_open()) {
        error = "the file cannot be opened";
        return false;
    }
    std::string line;
    while (std::getline(file, line)) {
        Reply reply;
        if (!parseReply(line, reply)) {
            error = "line " + std::to_string(_replies.size() + 1) + " is not a recorded exchange";
            return false;
        }
        _replies.push_back(reply);
    }
    error = "it contains no exchanges";
    return !_replies.empty();
}

Reply Replay::next() {
    if (_next == _replies.size()) {
        return {{}, Reply::End::Close};
    }
    return _replies[_next++];
}

} // namespace azubsim
