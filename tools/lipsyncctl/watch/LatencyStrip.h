#pragma once

#include <map>

#include "tools/common/Time.h"

namespace lipsyncctl {

/// The latency of the last minute: one column per second with its maximum, the current second on
/// the right.
class LatencyStrip {
public:
    void add(tools::Time time, double latencyMs);

    /// Draws into these rows of the screen. Draws nothing if they are too few.
    void draw(int top, int rows) const;

private:
    std::map<std::chrono::seconds, double> _maximaMs; ///< By second.
};

} // namespace lipsyncctl
