#pragma once

#include <deque>

namespace lipsyncctl {

/// The latency of the last minute: one column per second with its maximum, the current second on
/// the right.
class LatencyStrip {
public:
    /// `time` is in seconds since 1970.
    void add(double time, double latencyMs);

    /// Draws into these rows of the screen. Draws nothing if they are too few.
    void draw(int top, int rows) const;

private:
    struct Second {
        long time;
        double latencyMs;
    };

    std::deque<Second> _lastMinute;
};

} // namespace lipsyncctl
