#include "tools/azubsim/AudioEngine.h"

#include <cmath>

namespace azubsim {

namespace {

using std::chrono::duration;
using std::chrono::duration_cast;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;

constexpr milliseconds packetLength{20};
constexpr milliseconds networkDelay{60};
constexpr milliseconds playoutDelay{10};

Verdict notInCall() {
    return {1003, "no call"};
}

std::uint64_t toNtp(AudioEngine::Clock::time_point time) {
    constexpr std::uint64_t secondsFrom1900To1970 = 2208988800;
    const auto sinceEpoch = duration_cast<nanoseconds>(time.time_since_epoch());
    const auto ns = static_cast<std::uint64_t>(sinceEpoch.count());
    constexpr std::uint64_t nsPerSecond = 1000000000;
    return ((ns / nsPerSecond + secondsFrom1900To1970) << 32) +
           ((ns % nsPerSecond) << 32) / nsPerSecond;
}

// Varies between 20 and 120 ms: a slow sine wave plus a faster, smaller one.
milliseconds jitterDepth(AudioEngine::Clock::time_point time) {
    constexpr double twoPi = 6.283185307179586;
    const double seconds = duration<double>(time.time_since_epoch()).count();
    const double depth = 70 + 45 * std::sin(twoPi * std::fmod(seconds / 30.0, 1.0)) +
                         5 * std::sin(twoPi * std::fmod(seconds / 7.0, 1.0));
    return milliseconds(std::lround(depth));
}

} // namespace

Verdict AudioEngine::timestamps(Clock::time_point now, Timestamps& timestamps) const {
    if (!_inCall) {
        return notInCall();
    }
    const Clock::time_point received = now - now.time_since_epoch() % packetLength;
    const milliseconds depth = jitterDepth(received);
    timestamps.capture = toNtp(received - networkDelay);
    timestamps.receiving = toNtp(received);
    timestamps.rendering = toNtp(received + depth + playoutDelay + _margin);
    timestamps.jitterDepthMs = static_cast<std::uint64_t>(depth.count());
    return {};
}

Verdict AudioEngine::setMargin(std::uint64_t marginMs) {
    constexpr std::uint64_t maxMarginMs = 100;
    constexpr std::uint64_t granularityMs = 20;
    if (!_inCall) {
        return notInCall();
    }
    if (marginMs > maxMarginMs || marginMs % granularityMs != 0) {
        return {1002, "margin must be a multiple of 20 up to 100"};
    }
    _margin = milliseconds(marginMs);
    return {};
}

} // namespace azubsim
