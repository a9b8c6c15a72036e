#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tools/azubsim/protocol/Exchange.h"

namespace azubsim {

/// An exchange in words and figures. Messages come from outside and may contain any byte.
struct Description {
    std::string command;  ///< For example "GetAudioTs" or "bad request".
    std::string argument; ///< For example "40", or empty.
    std::string verdict;  ///< "ok", the error code, or what is wrong with the answer.
    std::string message;  ///< What the engine says about its code, or why something is invalid.
    std::string after;    ///< What came after a complete answer, or empty.

    // What an accepted request got or set.
    std::optional<double> latencyMs; ///< From capture to rendering.
    std::optional<std::uint64_t> jitterMs;
    std::optional<std::uint64_t> marginMs;
};

Description describe(const Exchange& exchange);

/// What the client would have got without the fault; nothing if that is the same, or unknown.
std::optional<Description> describeSaid(const Exchange& exchange);

} // namespace azubsim
