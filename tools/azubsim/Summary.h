#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tools/azubsim/Exchange.h"

namespace azubsim {

/// An exchange in words and figures. Messages come from outside and may contain any byte.
struct Summary {
    std::string command;  ///< For example "GetAudioTs" or "bad request".
    std::string argument; ///< For example "40", or empty.
    std::string verdict;  ///< "ok", the error code, or what is wrong with the answer.
    std::string message;  ///< What the engine says about its code, or why the request is bad.
    std::string after;    ///< What came after a complete answer, or empty.

    // What an accepted request got or set.
    std::optional<double> latencyMs; ///< From capture to rendering.
    std::optional<std::uint64_t> jitterMs;
    std::optional<std::uint64_t> marginMs;
};

Summary summarize(const Exchange& exchange);

} // namespace azubsim
