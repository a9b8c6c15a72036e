#pragma once

#include <chrono>
#include <cmath>
#include <cstdint>

// NTP timestamps are 32.32 fixed point: the upper half counts seconds since 1900. They start again
// from 0 in 2036, so never compare two of them with `<`: take their difference.
namespace video {

constexpr double ntpUnitsPerMs = 4294967.296;

inline std::uint64_t ntpNow() {
    using namespace std::chrono;
    constexpr std::uint64_t secondsFrom1900To1970 = 2208988800;
    constexpr std::uint64_t nsPerSecond = 1000000000;
    const auto sinceEpoch = duration_cast<nanoseconds>(system_clock::now().time_since_epoch());
    const auto ns = static_cast<std::uint64_t>(sinceEpoch.count());
    return ((ns / nsPerSecond + secondsFrom1900To1970) << 32) +
           ((ns % nsPerSecond) << 32) / nsPerSecond;
}

/// Negative if `to` is earlier than `from`. Right for times less than 68 years apart.
inline double ntpMsBetween(std::uint64_t from, std::uint64_t to) {
    // The subtraction wraps around just as the timestamps do, so it also works across 2036.
    return static_cast<double>(static_cast<std::int64_t>(to - from)) / ntpUnitsPerMs;
}

inline std::uint64_t ntpAddMs(std::uint64_t time, double ms) {
    return time + static_cast<std::uint64_t>(std::llround(ms * ntpUnitsPerMs));
}

} // namespace video
