#pragma once

#include <chrono>
#include <cstdint>
#include <random>

namespace video {

/// One picture on the screen.
struct Picture {
    std::uint64_t captured; ///< At the far end; NTP 32.32.
    std::uint64_t shown;    ///< Here; NTP 32.32.
};

/// Simulated pictures of a call, 30 per second. Network, decoder and display make each one about
/// 195 ms late.
class Pictures {
public:
    /// Blocks until the next picture is on the screen.
    Picture next();

private:
    using Clock = std::chrono::steady_clock;

    Clock::time_point _due = Clock::now();
    std::mt19937 _random{1};
};

} // namespace video
