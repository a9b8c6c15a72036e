#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <utility>

#include "tools/azubsim/engine/Network.h"
#include "tools/azubsim/protocol/Messages.h"

namespace azubsim {

/// The audio side of a call: packets arrive from a network, wait in a jitter buffer, and go to the
/// loudspeaker.
///
/// Nothing here reads a clock. What depends on the time gets it as an argument.
class AudioEngine {
public:
    using Clock = std::chrono::system_clock;
    using Time = Clock::time_point;

    void setInCall(bool inCall) { _inCall = inCall; }

    /// Follows a recorded network, which must have rows, until `setNetworkMs` or `setJitterMs`. Its
    /// time begins with the first `startNetwork`.
    void follow(Network network) { _recorded = std::move(network); }
    void startNetwork(Time now) { _networkStart = _networkStart.value_or(now); }
    bool isFollowing() const { return _recorded.has_value(); }

    /// The one-way delay from the far end to here.
    void setNetworkMs(double delay);

    /// The depth of the jitter buffer. Without a value it varies between 20 and 120 ms.
    void setJitterMs(std::optional<double> depth);

    /// How far the far end's clock, which gives the capture timestamps, is ahead at this time, in
    /// ms. Discards what a drift has added; the drift continues from the new offset.
    void setOffsetMs(double offset, Time now);

    /// How fast the far end's clock gains, in parts per million. A new drift starts at the present
    /// offset, so the clock does not jump.
    void setDriftPpm(double drift, Time now);

    /// A frozen engine repeats the timestamps that it had when it froze.
    void freeze(Time now) { _frozen = _frozen.value_or(measure(now)); }
    void unfreeze() { _frozen.reset(); }

    /// What the engine answers; nothing if the request is bad or its command unknown.
    std::optional<Answer> answer(const Request& request, Time now);

    /// When the packet that arrived last was captured and received, and when it will be rendered:
    /// the margin is added to the rendering time.
    Verdict timestamps(Time now, Timestamps& timestamps) const;

    /// Accepts multiples of 20 ms up to 100 ms.
    Verdict setMargin(std::uint64_t marginMs, Time now);
    double marginMs() const { return _marginMs; }

    /// How fast a new margin is applied, in ms per second; 0 means at once.
    void setSlew(double msPerSecond, Time now);

    /// An engine that has been away comes back without a margin.
    void resetMargin();

private:
    double offsetMs(Time now) const;
    Timestamps measure(Time now) const;
    Network::Row networkAt(Time received) const;
    double appliedMarginMs(Time now) const;

    bool _inCall = true;
    double _marginMs = 0;
    double _slew = 0;
    double _appliedMs = 0; ///< Of the margin, at `_marginSet`.
    Time _marginSet;
    double _networkMs = 60;
    std::optional<double> _jitterMs;
    std::optional<Network> _recorded;
    std::optional<Time> _networkStart;
    double _offsetMs = 0; ///< At `_offsetSet`.
    double _driftPpm = 0;
    Time _offsetSet;
    std::optional<Timestamps> _frozen;
};

} // namespace azubsim
