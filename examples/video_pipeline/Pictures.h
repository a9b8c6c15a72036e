#pragma once

#include <chrono>
#include <cstdint>
#include <random>
#include <thread>

#include "Network.h"
#include "avsync/Ntp.h"

namespace video {

/// One picture on the screen.
struct Picture {
    double seconds;         ///< Since the start.
    std::uint64_t captured; ///< At the far end, but on this machine's clock; NTP 32.32.
    std::uint64_t shown;    ///< Here; NTP 32.32.
    double delayMs;         ///< How long it was held back.

    double latenessMs() const { return velta::zub::avsync::ntpMsBetween(captured, shown); }
};

/// Simulated pictures of a call, 30 per second. Network, decoder and display make them late.
///
/// Their capture times are of this machine's clock. Those of a real call must be of the same clock
/// as the sound's, the sender's: then nothing is to be done when the clocks of the two ends differ.
class Pictures {
public:
    /// The network, if there is one, must outlive this.
    Pictures(double latenessMs, const Network* network)
        : _latenessMs(latenessMs), _network(network) {}

    /// Blocks until the next picture is on the screen, held back by `delayMs`.
    Picture next(double delayMs) {
        using namespace velta::zub::avsync;
        // After a stall, skip the missed pictures.
        do {
            _due += frameLength;
        } while (_due + frameLength < Clock::now());
        std::this_thread::sleep_until(_due);
        const double seconds = std::chrono::duration<double>(_due - _start).count();
        const double latenessMs =
            _network != nullptr ? _network->pictureMs(seconds) : _latenessMs + _noise(_random);
        const std::uint64_t shown = ntpAt(_due);
        return {seconds, ntpAddMs(shown, -latenessMs - delayMs), shown, delayMs};
    }

private:
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::nanoseconds frameLength{1000000000 / 30};

    const Clock::time_point _start = Clock::now();
    Clock::time_point _due = _start - frameLength / 2;
    double _latenessMs;
    const Network* _network;
    std::uniform_real_distribution<double> _noise{-3, 3};
    std::mt19937 _random{1};
};

} // namespace video
