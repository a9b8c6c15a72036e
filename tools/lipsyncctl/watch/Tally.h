#pragma once

#include <algorithm>
#include <limits>
#include <string>

#include "tools/common/Text.h"
#include "tools/lipsyncctl/Reading.h"

namespace lipsyncctl {

/// Counts what a watch has seen.
class Tally {
public:
    void add(const Reading& reading) {
        const bool isOutage = reading.failure && !reading.failure->isRefusal();
        _outages += isOutage && !_isOutage ? 1 : 0;
        _isOutage = isOutage;
        _refusals += reading.failure && !isOutage ? 1 : 0;
        if (!reading.failure) {
            const double latencyMs = reading.latencyMs();
            _minMs = std::min(_minMs, latencyMs);
            _maxMs = std::max(_maxMs, latencyMs);
            _sumMs += latencyMs;
            ++_readings;
        }
    }

    unsigned long readings() const { return _readings; }

    // Lines for people. The latency is empty without readings.

    std::string counts() const {
        return tools::printed("Readings %lu, refusals %lu, outages %lu", _readings, _refusals,
                              _outages);
    }

    std::string latency() const {
        return _readings == 0
                   ? ""
                   : tools::printed("Latency: min %.1f ms, mean %.1f ms, max %.1f ms", _minMs,
                                    _sumMs / static_cast<double>(_readings), _maxMs);
    }

private:
    unsigned long _readings = 0;
    unsigned long _refusals = 0;
    unsigned long _outages = 0; ///< Of any length.
    bool _isOutage = false;
    double _minMs = std::numeric_limits<double>::infinity();
    double _maxMs = -_minMs;
    double _sumMs = 0;
};

} // namespace lipsyncctl
