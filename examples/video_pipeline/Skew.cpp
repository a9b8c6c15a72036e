#include "Skew.h"

#include <algorithm>

namespace video {

void Skew::add(double pictureLatenessMs, double audioLatenessMs) {
    const double skew = audioLatenessMs - pictureLatenessMs;
    _smallest = _count == 0 ? skew : std::min(_smallest, skew);
    _largest = _count == 0 ? skew : std::max(_largest, skew);
    _pictures += pictureLatenessMs;
    _audio += audioLatenessMs;
    ++_count;
}

} // namespace video
