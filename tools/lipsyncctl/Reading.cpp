#include "tools/lipsyncctl/Reading.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace lipsyncctl {

namespace {

constexpr double ntpUnitsPerSecond = 4294967296.0;
constexpr unsigned long secondsFrom1900To1970 = 2208988800;

} // namespace

double now() {
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration<double>(sinceEpoch).count();
}

double ntpToUnix(unsigned long ntp) {
    const double seconds = static_cast<double>(ntp >> 32);
    const double fraction = static_cast<double>(ntp & 0xFFFFFFFF) / ntpUnitsPerSecond;
    return seconds - static_cast<double>(secondsFrom1900To1970) + fraction;
}

std::string timeOfDay(double seconds) {
    const auto rounded = static_cast<long>(std::llround(seconds * 1000));
    const std::time_t whole = rounded / 1000;
    const int milliseconds = static_cast<int>(rounded % 1000);
    std::tm local{};
    localtime_r(&whole, &local);
    char text[32];
    std::snprintf(text, sizeof(text), "%02d:%02d:%02d.%03d", local.tm_hour, local.tm_min,
                  local.tm_sec, milliseconds);
    return text;
}

double Reading::latencyMs() const {
    const auto difference =
        static_cast<long>(timestamps.audioRenderingTimestamp - timestamps.audioCaptureTimestamp);
    // Rounded to microseconds: NTP fractions are binary and would print many digits.
    return std::round(static_cast<double>(difference) * 1e6 / ntpUnitsPerSecond) / 1000;
}

Record Reading::record() const {
    return {{"time", time},
            {"capture_ntp", timestamps.audioCaptureTimestamp},
            {"rendering_ntp", timestamps.audioRenderingTimestamp},
            {"receiving_ntp", timestamps.audioReceivingTimestamp},
            {"latency_ms", latencyMs()},
            {"jitter_depth_ms", timestamps.jbmCurrentDepth}};
}

std::string Reading::text() const {
    char text[160];
    std::snprintf(text, sizeof(text),
                  "captured %s  received %s  rendered %s  latency %.1f ms  jitter buffer %lu ms",
                  timeOfDay(ntpToUnix(timestamps.audioCaptureTimestamp)).c_str(),
                  timeOfDay(ntpToUnix(timestamps.audioReceivingTimestamp)).c_str(),
                  timeOfDay(ntpToUnix(timestamps.audioRenderingTimestamp)).c_str(), latencyMs(),
                  timestamps.jbmCurrentDepth);
    return text;
}

} // namespace lipsyncctl
