#pragma once

#include <algorithm>
#include <array>
#include <cmath>

namespace velta::zub::avsync {

/// Estimates a latency and its trend from readings with noise and single errors.
///
/// The median of the last three readings goes through a filter with a level and a trend. Its gain
/// grows with the distance of the median from what was expected, compared with the usual noise. So
/// the level follows a clear change at once, and noise hardly. A step changes the level but not the
/// trend. One wrong reading changes nothing.
class Latency {
public:
    /// The trend forgets by this time. A latency that changes in small steps needs a longer one.
    explicit constexpr Latency(double trendMemorySeconds) : _trendMemory(trendMemorySeconds) {}

    /// Adds a reading, taken `seconds` after the last one; above 0.
    void add(double seconds, double ms) {
        _last[_next] = ms;
        _next = (_next + 1) % _last.size();
        _count = std::min(_count + 1, countUntilKnown + 1);
        if (_count <= countUntilKnown) {
            _levelMs = median();
            return;
        }
        const double deviation = std::min(std::abs(ms - median()), largestDeviationMs);
        _noiseMs += weight(seconds, noiseMemory) * (deviation - _noiseMs);
        follow(seconds, median() - (_levelMs + _trend * seconds));
    }

    /// True from the third reading on.
    bool isKnown() const { return _count >= countUntilKnown; }

    /// The latency now, without noise.
    double levelMs() const { return _levelMs; }

    /// In ms per second; 0 if it may be noise.
    double trend() const { return std::abs(_trend) > trendDoubt * _noiseMs ? _trend : 0; }

    /// For a time in which the latency cannot be measured.
    void dropTrend() { _trend = 0; }

private:
    static constexpr int countUntilKnown = 3;
    static constexpr double noiseMemory = 4; // In seconds.
    static constexpr double largestDeviationMs = 30;
    static constexpr double stepMs = 35;
    static constexpr double trendDoubt = 10; // In 1/s.

    // The part of an exponential average that is new after `seconds`.
    static double weight(double seconds, double memory) { return 1 - std::exp(-seconds / memory); }

    double median() const {
        const auto [least, most] = std::minmax({_last[0], _last[1]});
        return _count < countUntilKnown ? _last[0] : std::clamp(_last[2], least, most);
    }

    void follow(double seconds, double error) {
        if (std::abs(error) > stepMs + 3 * _noiseMs) {
            _levelMs = median();
            return;
        }
        const double signal = error * error;
        const double noise = 4 * _noiseMs * _noiseMs;
        const double gain = signal > 0 ? signal / (signal + noise) : 0;
        _levelMs += _trend * seconds + gain * error;
        _trend += weight(seconds, _trendMemory) * gain * error / seconds;
    }

    double _trendMemory;
    std::array<double, 3> _last{};
    std::size_t _next = 0;
    int _count = 0;
    double _levelMs = 0;
    double _trend = 0;
    double _noiseMs = 3; // Until it is known.
};

} // namespace velta::zub::avsync
