#include "tools/azubsim/AudioEngine.h"

#include <algorithm>
#include <cmath>

namespace azubsim {

namespace {

using std::chrono::duration;
using std::chrono::duration_cast;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;
using Time = AudioEngine::Clock::time_point;
using DecimalMs = duration<double, std::milli>;

constexpr milliseconds packetLength{20};
constexpr milliseconds playoutDelay{10};

Verdict notInCall() {
    return {1003, "no call"};
}

// A time before 1900 becomes 0, because an unsigned timestamp would wrap.
std::uint64_t toNtp(Time time) {
    constexpr std::chrono::seconds from1900To1970(2208988800);
    const nanoseconds since1900 = duration_cast<nanoseconds>(time.time_since_epoch()) +
                                  duration_cast<nanoseconds>(from1900To1970);
    const auto ns = static_cast<std::uint64_t>(std::max(since1900, nanoseconds(0)).count());
    constexpr std::uint64_t nsPerSecond = 1000000000;
    return ((ns / nsPerSecond) << 32) + ((ns % nsPerSecond) << 32) / nsPerSecond;
}

// Varies between 20 and 120 ms: a slow sine wave plus a faster, smaller one.
milliseconds wave(Time time) {
    constexpr double twoPi = 6.283185307179586;
    const double seconds = duration<double>(time.time_since_epoch()).count();
    const double depth = 70 + 45 * std::sin(twoPi * std::fmod(seconds / 30.0, 1.0)) +
                         5 * std::sin(twoPi * std::fmod(seconds / 7.0, 1.0));
    return milliseconds(std::lround(depth));
}

// All timestamps belong to this packet, so the far end's clock also changes only with a packet.
Time lastPacket(Time now) {
    return now - now.time_since_epoch() % packetLength;
}

} // namespace

double AudioEngine::offsetMs(Clock::time_point now) const {
    const DecimalMs passed = lastPacket(now) - _offsetSet;
    return _offsetMs + passed.count() * _driftPpm / 1e6;
}

void AudioEngine::setOffsetMs(double offset, Clock::time_point now) {
    _offsetMs = offset;
    _offsetSet = lastPacket(now);
}

void AudioEngine::setDriftPpm(double drift, Clock::time_point now) {
    setOffsetMs(offsetMs(now), now);
    _driftPpm = drift;
}

void AudioEngine::freeze(Clock::time_point now) {
    if (!_frozen) {
        _frozen = measure(now);
    }
}

Verdict AudioEngine::timestamps(Clock::time_point now, Timestamps& timestamps) const {
    if (!_inCall) {
        return notInCall();
    }
    timestamps = _frozen ? *_frozen : measure(now);
    return {};
}

Timestamps AudioEngine::measure(Clock::time_point now) const {
    const Time received = lastPacket(now);
    const auto offset = duration_cast<Clock::duration>(DecimalMs(offsetMs(now)));
    const milliseconds depth = _jitter ? *_jitter : wave(received);
    return {toNtp(received - _network + offset), toNtp(received + depth + playoutDelay + _margin),
            toNtp(received), static_cast<std::uint64_t>(depth.count())};
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
