#pragma once

#include <cstdint>
#include <optional>
#include <pugixml.hpp>
#include <string>

namespace azubsim {

struct Request {
    std::string command;                   ///< Its name, also if it is unknown. Empty if invalid.
    std::optional<std::uint64_t> marginMs; ///< Only in SetAudioDelay.
    std::string problem;                   ///< Why it is invalid.
};

/// The engine's verdict on a request.
struct Verdict {
    static constexpr int success = 1000;

    int code = success;
    std::string message;
};

/// NTP timestamps in 32.32 fixed point, and the depth of the jitter buffer in ms.
struct Timestamps {
    std::uint64_t capture = 0;
    std::uint64_t rendering = 0;
    std::uint64_t receiving = 0;
    std::uint64_t jitterDepthMs = 0;
};

struct Answer {
    std::string command; ///< The command that it answers.
    Verdict verdict;
    std::optional<Timestamps> timestamps; ///< Only to GetAudioTs, even if it reports an error.
};

// Messages are parsed and printed without their end marker.

Request parseRequest(const std::string& text);

/// The name of the command, or nothing if the request is not valid.
inline std::string commandOf(const std::string& request) {
    return parseRequest(request).command;
}

/// Throws a `tools::Error` that says why a client would refuse it.
Answer parseAnswer(const std::string& text);

std::string print(const Answer& answer);

/// Prints a document as the engine does: on one line, and with its own declaration.
std::string print(const pugi::xml_document& document);

} // namespace azubsim
