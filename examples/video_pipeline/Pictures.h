#pragma once

#include <chrono>
#include <cstdint>
#include <random>
#include <thread>

#include "Ntp.h"

namespace video {

/// One picture on the screen.
struct Picture {
    std::chrono::steady_clock::time_point due;
    std::uint64_t captured; ///< At the far end, but on this machine's clock; NTP 32.32.
    std::uint64_t shown;    ///< Here; NTP 32.32.
    double delayMs;         ///< How long it was held back.

    double latenessMs() const { return ntpMsBetween(captured, shown); }
};

/// Simulated pictures of a call, 30 per second. Network, decoder and display make them late.
///
/// Their capture times are of this machine's clock. Those of a real call must be of the same clock
/// as the sound's, the sender's: then nothing is to be done when the clocks of the two ends differ.
class Pictures {
public:
    Pictures(std::chrono::steady_clock::time_point start, double latenessMs)
        : _due(start - frameLength / 2), _lateness(latenessMs - 3, latenessMs + 3) {}

    /// Blocks until the next picture is on the screen, held back by `delayMs`.
    Picture next(double delayMs) {
        // After a stall, skip the missed pictures.
        do {
            _due += frameLength;
        } while (_due + frameLength < std::chrono::steady_clock::now());
        std::this_thread::sleep_until(_due);
        const std::uint64_t shown = ntpNow();
        return {_due, ntpAddMs(shown, -_lateness(_random) - delayMs), shown, delayMs};
    }

private:
    static constexpr std::chrono::nanoseconds frameLength{1000000000 / 30};

    std::chrono::steady_clock::time_point _due;
    std::uniform_real_distribution<double> _lateness;
    std::mt19937 _random{1};
};

} // namespace video
