#include "tools/lipsyncctl/Reading.h"

#include "tools/common/Text.h"

namespace lipsyncctl {

double Reading::latencyMs() const {
    return tools::msBetween(timestamps.audioCaptureTimestamp, timestamps.audioRenderingTimestamp);
}

// NTP numbers have 64 bits. Many JSON readers keep only 53, so the times are there as text too.
Record Reading::record() const {
    const auto utc = [](unsigned long ntp) { return tools::isoTime(fromNtp(ntp)); };
    Record record{{"time", nullptr},
                  {"capture_ntp", timestamps.audioCaptureTimestamp},
                  {"rendering_ntp", timestamps.audioRenderingTimestamp},
                  {"receiving_ntp", timestamps.audioReceivingTimestamp},
                  {"latency_ms", latencyMs()},
                  {"jitter_depth_ms", timestamps.jbmCurrentDepth},
                  {"time_utc", nullptr},
                  {"capture_utc", utc(timestamps.audioCaptureTimestamp)},
                  {"rendering_utc", utc(timestamps.audioRenderingTimestamp)},
                  {"receiving_utc", utc(timestamps.audioReceivingTimestamp)},
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
                          tools::timeOfDay(fromNtp(captured)).c_str(),
                          tools::msBetween(captured, timestamps.audioReceivingTimestamp),
                          latencyMs(), timestamps.jbmCurrentDepth);
}

Reading read(Connection& connection) {
    Reading reading;
    try {
        if (!connection.isConnected()) {
            connection.connect();
        }
        connection.run(
            [&](auto& service) { return service.getAudioTimestamps(reading.timestamps); });
    } catch (const Failure& failure) {
        reading.failure = failure;
    }
    reading.time = tools::now();
    return reading;
}

} // namespace lipsyncctl
