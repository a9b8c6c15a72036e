#pragma once

#include <cstdint>
#include <string>

namespace azubsim {

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

} // namespace azubsim
