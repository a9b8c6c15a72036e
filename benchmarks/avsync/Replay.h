#pragma once

#include <functional>
#include <valarray>
#include <vector>

#include "avsync/Controller.h"
#include "avsync/Window.h"
#include "tools/azubsim/engine/Network.h"

namespace benchmarks {

using namespace velta::zub::avsync;

/// What a call would show without any correction.
using Call = std::vector<azubsim::Network::Row>;

/// Returns what should be in force from the next reading on.
using Rule = std::function<Correction(Controller::Time, const Reading&, const Correction& inForce)>;

/// How good the corrections in a call were: the percentages of readings inside the window of IS-191
/// and inside that of BT.1359; changes a minute, and those of the margin; the mean of margin and
/// pictures' delay in ms.
using Score = std::valarray<double>;
enum { Inside, Undetected, Changes, MarginChanges, DelayMs };

/// Gives a rule the readings of a call, with the corrections in force included.
inline Score replay(const Call& call, const Rule& rule) {
    const double perMinute = 60 / call.back().seconds;
    const auto readings = static_cast<double>(call.size());
    Score score(5);
    Correction inForce;
    for (const auto& row : call) {
        const auto marginMs = static_cast<double>(inForce.marginMs);
        const Reading reading{row.audioMs + marginMs, row.pictureMs + inForce.pictureDelayMs,
                              row.depthMs};
        const std::chrono::microseconds time(std::llround((3600 + row.seconds) * 1e6));
        const Correction next = rule(Controller::Time(time), reading, inForce);
        const double skew = reading.audioLatencyMs - reading.pictureLatencyMs;
        const bool movesMargin = next.marginMs != inForce.marginMs;
        const bool moves = movesMargin || next.pictureDelayMs != inForce.pictureDelayMs;
        score += Score{double(allowedSkew.contains(skew)), double(undetectedSkew.contains(skew)),
                       double(moves), double(movesMargin), marginMs + inForce.pictureDelayMs};
        inForce = next;
    }
    return score * Score{100 / readings, 100 / readings, perMinute, perMinute, 1 / readings};
}

/// The mean of what `measure` returns for each part.
template <typename Parts, typename Measure>
Score mean(const Parts& parts, const Measure& measure) {
    Score sum = measure(parts[0]);
    std::for_each(parts.begin() + 1, parts.end(), [&](const auto& part) { sum += measure(part); });
    return sum / static_cast<double>(parts.size());
}

} // namespace benchmarks
