#pragma once

#include <memory>
#include <utility>

#include "benchmarks/avsync/Replay.h"

namespace benchmarks {

/// A rule with one number. A positive shift is a margin, in steps of 20 ms up to 100; a negative
/// one delays the pictures. Returns the next shift.
using ShiftRule = std::function<double(double seconds, double skewMs, double shiftMs)>;

inline Correction toCorrection(double shiftMs) {
    const double marginMs = std::round(std::clamp(shiftMs, 0.0, 100.0) / 20) * 20;
    return {static_cast<unsigned long>(marginMs), std::max(-shiftMs, 0.0)};
}

inline double toShift(const Correction& correction) {
    return static_cast<double>(correction.marginMs) - correction.pictureDelayMs;
}

inline Rule byShift(const ShiftRule& rule) {
    return [rule](Controller::Time now, const Reading& reading, const Correction& inForce) {
        const double seconds = std::chrono::duration<double>(now.time_since_epoch()).count();
        const double skew = reading.audioLatencyMs - reading.pictureLatencyMs;
        return toCorrection(rule(seconds, skew, toShift(inForce)));
    };
}

inline Rule noHelp() {
    return byShift([](double, double, double shift) { return shift; });
}

/// In the manner of WebRTC's stream synchronisation: once a second, half the average difference.
inline Rule halfTheDifference() {
    return byShift([updated = 0.0, average = 0.0](double now, double skew, double shift) mutable {
        if (now - updated < 1) {
            return shift;
        }
        updated = now;
        average += (skew - average) / 4;
        const bool isClear = std::abs(average) >= 30;
        return isClear ? shift - std::clamp(std::exchange(average, 0) / 2, -80.0, 80.0) : shift;
    });
}

/// The example's former rule: an average over 0.4 s, and a dead band of little more than half a
/// step of the margin.
inline Rule narrowDeadBand() {
    return byShift([updated = 0.0, changed = 0.0, average = 0.0, readings = 0](
                       double now, double skew, double shift) mutable {
        const double passed = now - std::exchange(updated, now);
        average += (1 - std::exp(-passed / 0.4)) * (skew - shift - average);
        const double error = 15 - average - shift;
        const double wanted = std::max(shift + std::clamp(error, -40.0, 40.0), -200.0);
        const double next = toShift(toCorrection(wanted));
        if (++readings < 5 || std::abs(error) <= 12 || now - changed < 1 ||
            std::abs(next - shift) < 0.5) {
            return shift;
        }
        changed = now;
        return next;
    });
}

inline Rule controller() {
    const auto controller = std::make_shared<Controller>(20, 100);
    return [controller](auto... arguments) { return controller->update(arguments...); };
}

} // namespace benchmarks
