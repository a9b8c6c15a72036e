#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace azubsim {

/// The engine's verdict on a request.
struct Verdict {
    int code = 1000;
    std::string message;
};

/// NTP timestamps in 32.32 fixed point, and the depth of the jitter buffer in ms.
struct Timestamps {
    std::uint64_t capture = 0;
    std::uint64_t rendering = 0;
    std::uint64_t receiving = 0;
    std::uint64_t jitterDepthMs = 0;
};

/// The audio side of a call: packets arrive from a network, wait in a jitter buffer, and go to the
/// loudspeaker.
class AudioEngine {
public:
    using Clock = std::chrono::system_clock;

    bool isInCall() const { return _inCall; }
    void setInCall(bool inCall) { _inCall = inCall; }

    /// When the packet that arrived last was captured and received, and when it will be rendered:
    /// the margin is added to the rendering time.
    Verdict timestamps(Clock::time_point now, Timestamps& timestamps) const;

    /// Accepts multiples of 20 ms up to 100 ms.
    Verdict setMargin(std::uint64_t marginMs);

private:
    bool _inCall = true;
    std::chrono::milliseconds _margin{0};
};

} // namespace azubsim
