#include "tools/lipsyncctl/Time.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace lipsyncctl {

namespace {

constexpr long msPerSecond = 1000;

struct Split {
    std::time_t seconds;
    int ms; // 0 to 999, also before 1970.
};

Split split(long ms) {
    const long rest = (ms % msPerSecond + msPerSecond) % msPerSecond;
    return {(ms - rest) / msPerSecond, static_cast<int>(rest)};
}

std::string formatted(const char* format, const std::tm& time, int ms) {
    char text[64];
    const std::size_t length = std::strftime(text, sizeof(text), format, &time);
    std::snprintf(text + length, sizeof(text) - length, ".%03d", ms);
    return text;
}

} // namespace

double now() {
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration<double>(sinceEpoch).count();
}

long fromSeconds(double seconds) {
    return std::lround(seconds * msPerSecond);
}

long fromNtp(unsigned long ntp) {
    constexpr long secondsFrom1900To1970 = 2208988800;
    const auto seconds = static_cast<long>(ntp >> 32) - secondsFrom1900To1970;
    const auto fraction = static_cast<long>(ntp & 0xFFFFFFFF);
    constexpr long half = 1L << 31;
    return seconds * msPerSecond + ((fraction * msPerSecond + half) >> 32);
}

std::string timeOfDay(long ms) {
    const Split time = split(ms);
    std::tm local{};
    localtime_r(&time.seconds, &local);
    return formatted("%H:%M:%S", local, time.ms);
}

std::string isoTime(long ms) {
    const Split time = split(ms);
    std::tm utc{};
    gmtime_r(&time.seconds, &utc);
    return formatted("%Y-%m-%dT%H:%M:%S", utc, time.ms) + 'Z';
}

} // namespace lipsyncctl
