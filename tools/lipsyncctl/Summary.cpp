#include "tools/lipsyncctl/Summary.h"

#include <algorithm>

#include "tools/lipsyncctl/Text.h"

namespace lipsyncctl {

void Summary::addReading(double latencyMs) {
    _minMs = _readings == 0 ? latencyMs : std::min(_minMs, latencyMs);
    _maxMs = _readings == 0 ? latencyMs : std::max(_maxMs, latencyMs);
    _sumMs += latencyMs;
    ++_readings;
    _isOutage = false;
}

void Summary::addFailure(const Failure& failure) {
    if (failure.isRefusal()) {
        ++_refusals;
        _isOutage = false;
        return;
    }
    _outages += _isOutage ? 0 : 1;
    _isOutage = true;
}

std::string Summary::counts() const {
    return printed("Readings %lu, refusals %lu, outages %lu", _readings, _refusals, _outages);
}

std::string Summary::text() const {
    std::string text = counts();
    if (_readings > 0) {
        text += printed("\nLatency: min %.1f ms, mean %.1f ms, max %.1f ms", _minMs,
                        _sumMs / static_cast<double>(_readings), _maxMs);
    }
    return text;
}

} // namespace lipsyncctl
