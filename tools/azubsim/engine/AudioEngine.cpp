#include "tools/azubsim/engine/AudioEngine.h"

#include <algorithm>
#include <cmath>

namespace azubsim {

namespace {

using std::chrono::duration;
using std::chrono::duration_cast;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;
using Time = AudioEngine::Clock::time_point;
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

// From `from` towards `to`, but not further than `most`, which a clock that is set back makes
// negative.
double approach(double from, double to, double most) {
    const double limit = std::max(most, 0.0);
    return from + std::clamp(to - from, -limit, limit);
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
    const Path path = this->path(received);
    const DecimalMs margin(appliedMarginMs(now));
    const auto shifted = [received](DecimalMs time) {
        return toNtp(received + duration_cast<Clock::duration>(time));
    };
    return {shifted(DecimalMs(offsetMs(now)) - path.travel), shifted(path.wait + margin),
            toNtp(received), static_cast<std::uint64_t>(std::llround(path.depth.count()))};
}

AudioEngine::Path AudioEngine::path(Clock::time_point received) const {
    if (_recorded) {
        const duration<double> passed = received - _networkStart.value_or(received);
        const Network::Row& row = _recorded->at(passed.count());
        const DecimalMs latency(row.audioMs);
        const DecimalMs depth(row.depthMs);
        // The packet arrives when it has been captured, whatever the file says.
        const DecimalMs wait = std::min<DecimalMs>(depth + playoutDelay, latency);
        return {latency - wait, depth, wait};
    }
    const milliseconds depth = _jitter ? *_jitter : wave(received);
    return {_network, depth, depth + playoutDelay};
}

void AudioEngine::setNetwork(Ms delay) {
    _network = delay;
    _recorded.reset();
}

void AudioEngine::setJitter(std::optional<Ms> depth) {
    _jitter = depth;
    _recorded.reset();
}

double AudioEngine::appliedMarginMs(Clock::time_point now) const {
    const auto margin = static_cast<double>(_margin.count());
    const duration<double> passed = lastPacket(now) - _marginSet;
    return _slew > 0 ? approach(_appliedMs, margin, _slew * passed.count()) : margin;
}

Verdict AudioEngine::setMargin(std::uint64_t marginMs, Clock::time_point now) {
    constexpr std::uint64_t maxMarginMs = 100;
    constexpr std::uint64_t granularityMs = 20;
    if (!_inCall) {
        return notInCall();
    }
    if (marginMs > maxMarginMs || marginMs % granularityMs != 0) {
        return {1002, "margin must be a multiple of 20 up to 100"};
    }
    setSlew(_slew, now);
    _margin = milliseconds(marginMs);
    return {};
}

// The rate or the margin changes, but what has been applied does not jump.
void AudioEngine::setSlew(double msPerSecond, Clock::time_point now) {
    _appliedMs = appliedMarginMs(now);
    _marginSet = lastPacket(now);
    _slew = msPerSecond;
}

void AudioEngine::resetMargin() {
    _margin = Ms(0);
    _appliedMs = 0;
}

} // namespace azubsim
