#include "tools/lipsyncctl/Reading.h"

#include "tools/common/Text.h"

namespace lipsyncctl {

namespace {

std::string isoNtp(unsigned long ntp) {
    return tools::isoTime(tools::fromNtp(ntp));
}

} // namespace

double Reading::latencyMs() const {
    return tools::msBetween(timestamps.audioCaptureTimestamp, timestamps.audioRenderingTimestamp);
}

// NTP numbers have 64 bits. Many JSON readers keep only 53, so the times are there as text too.
Record Reading::record() const {
    Record record{{"time", nullptr},
                  {"capture_ntp", timestamps.audioCaptureTimestamp},
                  {"rendering_ntp", timestamps.audioRenderingTimestamp},
                  {"receiving_ntp", timestamps.audioReceivingTimestamp},
                  {"latency_ms", latencyMs()},
                  {"jitter_depth_ms", timestamps.jbmCurrentDepth},
                  {"time_utc", nullptr},
                  {"capture_utc", isoNtp(timestamps.audioCaptureTimestamp)},
                  {"rendering_utc", isoNtp(timestamps.audioRenderingTimestamp)},
                  {"receiving_utc", isoNtp(timestamps.audioReceivingTimestamp)},
                  {"error", nullptr}};
    if (failure) {
        for (auto& value : record) {
            value = nullptr;
        }
        record["error"] = failure->record();
    }
    record["time"] = std::chrono::duration<double>(time).count();
    record["time_utc"] = tools::isoTime(time);
    return record;
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
    try {
        if (!connection.isConnected()) {
            connection.connect();
        }
        reading.timestamps = connection.getTimestamps();
    } catch (const Failure& failure) {
        reading.failure = failure;
    }
    reading.time = tools::now();
    return reading;
}

} // namespace lipsyncctl
