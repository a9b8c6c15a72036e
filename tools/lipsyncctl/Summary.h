#pragma once

#include <string>

#include "tools/lipsyncctl/Failure.h"

namespace lipsyncctl {

/// Counts what a watch has seen.
class Summary {
public:
    void addReading(double latencyMs);
    void addFailure(const Failure& failure);

    unsigned long readings() const { return _readings; }

    /// One line for people.
    std::string counts() const;

    /// The counts, and a second line with the latency if there were readings.
    std::string text() const;

private:
    unsigned long _readings = 0;
    unsigned long _refusals = 0;
    unsigned long _outages = 0; ///< Of any length.
    bool _isOutage = false;
    double _minMs = 0;
    double _maxMs = 0;
    double _sumMs = 0;
};

} // namespace lipsyncctl
