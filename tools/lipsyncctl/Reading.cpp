#include "tools/lipsyncctl/Reading.h"

#include "tools/common/Text.h"

namespace lipsyncctl {

namespace {

std::string isoNtp(unsigned long ntp) {
    return tools::isoTime(tools::fromNtp(ntp));
}

double toSeconds(tools::Time time) {
    return std::chrono::duration<double>(time).count();
}

} // namespace

double Reading::latencyMs() const {
    return tools::msBetween(timestamps.audioCaptureTimestamp, timestamps.audioRenderingTimestamp);
}

// NTP numbers have 64 bits. Many JSON readers keep only 53, so the times are there as text too.
Record Reading::record() const {
    return {{"time", toSeconds(time)},
            {"capture_ntp", timestamps.audioCaptureTimestamp},
            {"rendering_ntp", timestamps.audioRenderingTimestamp},
            {"receiving_ntp", timestamps.audioReceivingTimestamp},
            {"latency_ms", latencyMs()},
            {"jitter_depth_ms", timestamps.jbmCurrentDepth},
            {"time_utc", tools::isoTime(time)},
            {"capture_utc", isoNtp(timestamps.audioCaptureTimestamp)},
            {"rendering_utc", isoNtp(timestamps.audioRenderingTimestamp)},
            {"receiving_utc", isoNtp(timestamps.audioReceivingTimestamp)},
            {"error", nullptr}};
}

std::string Reading::text() const {
    const unsigned long captured = timestamps.audioCaptureTimestamp;
    return tools::printed("captured %s  received %+.0f ms  latency %.1f ms  jitter %lu ms",
                          tools::timeOfDay(tools::fromNtp(captured)).c_str(),
                          tools::msBetween(captured, timestamps.audioReceivingTimestamp),
                          latencyMs(), timestamps.jbmCurrentDepth);
}

Reading read(Connection& connection) {
    Reading reading;
    reading.timestamps = connection.getTimestamps();
    reading.time = tools::now();
    return reading;
}

Record outageRecord(const Failure& failure) {
    const tools::Time time = tools::now();
    Record record = Reading().record();
    for (auto& value : record) {
        value = nullptr;
    }
    record["time"] = toSeconds(time);
    record["time_utc"] = tools::isoTime(time);
    record["error"] = failure.record();
    return record;
}

} // namespace lipsyncctl
