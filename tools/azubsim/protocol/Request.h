#pragma once

#include <cstdint>
#include <string>

#include "tools/azubsim/protocol/Names.h"

namespace azubsim {

struct Request {
    Kind kind = Kind::Other;
    std::string command;       ///< Its name, also if the kind is `Other`.
    std::uint64_t delayMs = 0; ///< The margin in `SetAudioDelay`.
};

/// Parses a request without its end marker. Throws a `tools::Error` that says what is wrong.
Request parseRequest(const std::string& text);

/// The name of the command, or nothing if the request is not valid.
std::string commandOf(const std::string& request);

} // namespace azubsim
