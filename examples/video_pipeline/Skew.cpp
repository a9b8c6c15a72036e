#include "video_pipeline/Skew.h"

#include <algorithm>
#include <cmath>

namespace video {

void Skew::add(double pictureLatenessMs, double audioLatenessMs) {
    const double skew = audioLatenessMs - pictureLatenessMs;
    _smallest = _count == 0 ? skew : std::min(_smallest, skew);
    _largest = _count == 0 ? skew : std::max(_largest, skew);
    _pictures += pictureLatenessMs;
    _audio += audioLatenessMs;
    ++_count;
}

unsigned long bestMargin(double skewWithoutMarginMs, unsigned long granularityMs,
                         unsigned long maxMs) {
    const double granularity = static_cast<double>(granularityMs);
    const double steps = std::round(-skewWithoutMarginMs / granularity);
    const double largest = std::floor(static_cast<double>(maxMs) / granularity);
    return static_cast<unsigned long>(std::clamp(steps, 0.0, largest)) * granularityMs;
}

} // namespace video
