#include "tools/lipsyncctl/Tally.h"

#include <algorithm>

#include "tools/common/Text.h"

namespace lipsyncctl {

void Tally::add(const Poller::Event& event) {
    if (const auto* const failure = std::get_if<Failure>(&event)) {
        const bool isOutage = !failure->isRefusal();
        _refusals += isOutage ? 0 : 1;
        _outages += isOutage && !_isOutage ? 1 : 0;
        _isOutage = isOutage;
        return;
    }
    const double latencyMs = std::get<Reading>(event).latencyMs();
    _minMs = _readings == 0 ? latencyMs : std::min(_minMs, latencyMs);
    _maxMs = _readings == 0 ? latencyMs : std::max(_maxMs, latencyMs);
    _sumMs += latencyMs;
    ++_readings;
    _isOutage = false;
}

std::string Tally::counts() const {
    return tools::printed("Readings %lu, refusals %lu, outages %lu", _readings, _refusals,
                          _outages);
}

std::string Tally::latency() const {
    return _readings == 0 ? ""
                          : tools::printed("Latency: min %.1f ms, mean %.1f ms, max %.1f ms",
                                           _minMs, _sumMs / static_cast<double>(_readings), _maxMs);
}

} // namespace lipsyncctl
