#pragma once

#include <string>

#include "tools/lipsyncctl/Poller.h"

namespace lipsyncctl {

/// Counts what a watch has seen.
class Tally {
public:
    void add(const Poller::Event& event);

    unsigned long readings() const { return _readings; }

    // Lines for people. The latency is empty without readings.
    std::string counts() const;
    std::string latency() const;

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
