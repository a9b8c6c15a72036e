#include "video_pipeline/Pictures.h"

#include <algorithm>
#include <thread>

#include "video_pipeline/Ntp.h"

namespace video {

Picture Pictures::next() {
    constexpr std::chrono::nanoseconds frameLength{1000000000 / 30};
    // After a stall, skip the missed pictures.
    _due = std::max(_due + frameLength, Clock::now());
    std::this_thread::sleep_until(_due);
    std::uniform_real_distribution<double> lateness(0.192, 0.198);
    const std::uint64_t shown = ntpNow();
    return {shown - static_cast<std::uint64_t>(lateness(_random) * unitsPerSecond), shown};
}

} // namespace video
