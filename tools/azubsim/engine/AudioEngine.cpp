#include "tools/azubsim/engine/AudioEngine.h"

#include <algorithm>
#include <cmath>

#include "avsync/Ntp.h"
#include "tools/azubsim/protocol/Names.h"

namespace azubsim {

namespace {

using velta::zub::avsync::ntpAddMs;
using velta::zub::avsync::ntpFrom;

constexpr std::chrono::milliseconds packetLength{20};
constexpr double playoutDelayMs = 10;

const Verdict notInCall{1003, "no call"};

double secondsBetween(AudioEngine::Time start, AudioEngine::Time end) {
    return std::chrono::duration<double>(end - start).count();
}

// Varies between 20 and 120: a slow sine wave plus a faster, smaller one.
double waveMs(AudioEngine::Time time) {
    constexpr double twoPi = 6.283185307179586;
    const double seconds = secondsBetween({}, time);
    return std::round(70 + 45 * std::sin(twoPi * std::fmod(seconds / 30.0, 1.0)) +
                      5 * std::sin(twoPi * std::fmod(seconds / 7.0, 1.0)));
}

// All timestamps belong to this packet, so the far end's clock also changes only with a packet.
AudioEngine::Time lastPacket(AudioEngine::Time now) {
    return now - now.time_since_epoch() % packetLength;
}

} // namespace

double AudioEngine::offsetMs(Time now) const {
    return _offsetMs + secondsBetween(_offsetSet, lastPacket(now)) * 1000 * _driftPpm / 1e6;
}

void AudioEngine::setOffsetMs(double offset, Time now) {
    _offsetMs = offset;
    _offsetSet = lastPacket(now);
}

void AudioEngine::setDriftPpm(double drift, Time now) {
    setOffsetMs(offsetMs(now), now);
    _driftPpm = drift;
}

std::optional<Answer> AudioEngine::answer(const Request& request, Time now) {
    Answer answer{request.command, {}, {}};
    if (request.command == names::getAudioTs) {
        answer.verdict = timestamps(now, answer.timestamps.emplace());
    } else if (request.marginMs) {
        answer.verdict = setMargin(*request.marginMs, now);
    } else {
        return std::nullopt;
    }
    return answer;
}

Verdict AudioEngine::timestamps(Time now, Timestamps& timestamps) const {
    if (!_inCall) {
        return notInCall;
    }
    timestamps = _frozen ? *_frozen : measure(now);
    return {};
}

Timestamps AudioEngine::measure(Time now) const {
    const Time received = lastPacket(now);
    const Network::Row network = networkAt(received);
    // The packet arrives when it has been captured, whatever a recorded network says.
    const double waitMs = std::min(network.depthMs + playoutDelayMs, network.audioMs);
    const std::uint64_t arrival = ntpFrom(received);
    return {ntpAddMs(arrival, offsetMs(now) - (network.audioMs - waitMs)),
            ntpAddMs(arrival, waitMs + appliedMarginMs(now)), arrival,
            static_cast<std::uint64_t>(std::llround(network.depthMs))};
}

Network::Row AudioEngine::networkAt(Time received) const {
    if (_recorded) {
        const Time start = _networkStart.value_or(received);
        return _recorded->at(secondsBetween(start, received));
    }
    const double depth = _jitterMs.value_or(waveMs(received));
    return {0, _networkMs + depth + playoutDelayMs, depth, 0};
}

void AudioEngine::setNetworkMs(double delay) {
    _networkMs = delay;
    _recorded.reset();
}

void AudioEngine::setJitterMs(std::optional<double> depth) {
    _jitterMs = depth;
    _recorded.reset();
}

double AudioEngine::appliedMarginMs(Time now) const {
    // A clock that is set back would make this negative.
    const double most = std::max(_slew * secondsBetween(_marginSet, lastPacket(now)), 0.0);
    return _slew > 0 ? _appliedMs + std::clamp(_marginMs - _appliedMs, -most, most) : _marginMs;
}

Verdict AudioEngine::setMargin(std::uint64_t marginMs, Time now) {
    constexpr std::uint64_t maxMarginMs = 100;
    constexpr std::uint64_t granularityMs = 20;
    if (!_inCall) {
        return notInCall;
    }
    if (marginMs > maxMarginMs || marginMs % granularityMs != 0) {
        return {1002, "margin must be a multiple of 20 up to 100"};
    }
    setSlew(_slew, now);
    _marginMs = static_cast<double>(marginMs);
    return {};
}

// The rate or the margin changes, but what has been applied does not jump.
void AudioEngine::setSlew(double msPerSecond, Time now) {
    _appliedMs = appliedMarginMs(now);
    _marginSet = lastPacket(now);
    _slew = msPerSecond;
}

void AudioEngine::resetMargin() {
    _marginMs = 0;
    _appliedMs = 0;
}

} // namespace azubsim
