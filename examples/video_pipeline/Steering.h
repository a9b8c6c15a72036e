#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>

#include "Skew.h"

namespace video {

/// Decides how much to delay the audio or the pictures so that both are in step.
///
/// There is only one number to choose, the shift. A positive shift delays the audio: that is the
/// margin. A negative shift delays the pictures, for audio that is late even with a margin of 0.
///
/// Listeners can hear a change of the margin, and a change of the pictures' delay repeats or skips
/// pictures. So the shift changes only if the average of several readings asks for it, not for a
/// small difference, and not often.
class Steering {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// Every margin is a multiple of `granularityMs` up to `maxMarginMs`.
    Steering(unsigned long granularityMs, unsigned long maxMarginMs)
        : _granularityMs(static_cast<double>(granularityMs)),
          _maxMarginMs(static_cast<double>(maxMarginMs)) {}

    /// Adds a reading. `skewMs` is the skew as it would be with a shift of 0. Returns true if that
    /// changes the margin or the pictures' delay.
    bool update(Time now, double skewMs) {
        addToAverage(now, skewMs);
        if (_readings < leastReadings) {
            return false;
        }
        const double shift = std::abs(error()) > deadBandMs() ? nextShift() : _shiftMs;
        // True also if the limits leave nothing to improve.
        const bool isBest = isSame(shift, _shiftMs);
        _isSettled = _isSettled || isBest;
        if (isBest || now - _changed < shortestInterval) {
            return false;
        }
        _shiftMs = shift;
        _changed = now;
        return true;
    }

    /// Forgets the readings but keeps the shift, for example after a reconnection.
    void restart() {
        _readings = 0;
        _isSettled = false;
    }

    unsigned long marginMs() const {
        return static_cast<unsigned long>(std::lround(std::max(_shiftMs, 0.0)));
    }
    double pictureDelayMs() const { return _shiftMs < 0 ? -_shiftMs : 0; }

    /// True once the shift has been right since the start or the last restart.
    bool isSettled() const { return _isSettled; }

private:
    // The middle of the window: the skew has the same room to drift in both directions.
    static constexpr double aimMs = (allowedSkew.earliest + allowedSkew.latest) / 2;
    static constexpr double maxChangeMs = 40;
    static constexpr double maxPictureDelayMs = 200;
    static constexpr int leastReadings = 5;
    static constexpr std::chrono::milliseconds averagedOver{400};
    static constexpr std::chrono::seconds longestGap{1};
    static constexpr std::chrono::seconds shortestInterval{1};

    // An exponential filter that forgets by time, so it suits any rate of readings.
    void addToAverage(Time now, double skewMs) {
        if (_readings > 0 && now - _updated > longestGap) {
            restart();
        }
        const std::chrono::duration<double> passed = now - _updated;
        const std::chrono::duration<double> memory = averagedOver;
        const double weight = _readings == 0 ? 1 : 1 - std::exp(-passed.count() / memory.count());
        _averageMs += weight * (skewMs - _averageMs);
        _updated = now;
        ++_readings;
    }

    // Positive if the shift is too small.
    double error() const { return aimMs - _averageMs - _shiftMs; }

    // More than half a step. Otherwise a margin could alternate between two neighbours.
    double deadBandMs() const { return 0.6 * _granularityMs; }

    double nextShift() const {
        const double change = std::clamp(error(), -maxChangeMs, maxChangeMs);
        const double shift = std::clamp(_shiftMs + change, -maxPictureDelayMs, _maxMarginMs);
        // Pictures can be delayed by any time, audio only in steps.
        return shift < 0 ? shift : std::round(shift / _granularityMs) * _granularityMs;
    }

    static bool isSame(double a, double b) { return std::abs(a - b) < 0.5; }

    double _granularityMs;
    double _maxMarginMs;
    double _shiftMs = 0;
    double _averageMs = 0;
    int _readings = 0;
    bool _isSettled = false;
    Time _updated;
    Time _changed;
};

} // namespace video
