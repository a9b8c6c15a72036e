#include "tools/lipsyncctl/Reading.h"

#include <cmath>
#include <cstdio>

#include "tools/lipsyncctl/Time.h"

namespace lipsyncctl {

double Reading::latencyMs() const {
    constexpr double ntpUnitsPerSecond = 4294967296.0;
    const auto difference =
        static_cast<long>(timestamps.audioRenderingTimestamp - timestamps.audioCaptureTimestamp);
    // Rounded to microseconds: NTP fractions are binary and would print many digits. Adding 0 turns
    // -0 into 0.
    return std::round(static_cast<double>(difference) * 1e6 / ntpUnitsPerSecond) / 1000 + 0.0;
}

// NTP numbers have 64 bits. Many JSON readers keep only 53, so the times are there as text too.
Record Reading::record() const {
    return {{"time", time},
            {"capture_ntp", timestamps.audioCaptureTimestamp},
            {"rendering_ntp", timestamps.audioRenderingTimestamp},
            {"receiving_ntp", timestamps.audioReceivingTimestamp},
            {"latency_ms", latencyMs()},
            {"jitter_depth_ms", timestamps.jbmCurrentDepth},
            {"time_utc", isoTime(fromSeconds(time))},
            {"capture_utc", isoTime(fromNtp(timestamps.audioCaptureTimestamp))},
            {"rendering_utc", isoTime(fromNtp(timestamps.audioRenderingTimestamp))},
            {"receiving_utc", isoTime(fromNtp(timestamps.audioReceivingTimestamp))},
            {"error", nullptr}};
}

std::string Reading::text() const {
    char text[160];
    std::snprintf(text, sizeof(text),
                  "captured %s  received %s  rendered %s  latency %.1f ms  jitter buffer %lu ms",
                  timeOfDay(fromNtp(timestamps.audioCaptureTimestamp)).c_str(),
                  timeOfDay(fromNtp(timestamps.audioReceivingTimestamp)).c_str(),
                  timeOfDay(fromNtp(timestamps.audioRenderingTimestamp)).c_str(), latencyMs(),
                  timestamps.jbmCurrentDepth);
    return text;
}

Record outageRecord(double time, const Failure& failure) {
    Record record = Reading().record();
    for (auto& value : record) {
        value = nullptr;
    }
    record["time"] = time;
    record["time_utc"] = isoTime(fromSeconds(time));
    record["error"] = failure.record();
    return record;
}

} // namespace lipsyncctl
