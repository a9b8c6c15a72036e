#pragma once

#include <chrono>
#include <cmath>
#include <cstdint>

#include "avsync/RtpClock.h"

// NTP timestamps are 32.32 fixed point: the upper half counts seconds since 1900. They start again
// from 0 in 2036, so never compare two of them with `<`: take their difference with `ntpMsBetween`.
//
// All functions may be called from any thread. None blocks, allocates or throws.
namespace velta::zub::avsync {

inline constexpr double ntpUnitsPerMs = 4294967.296;

namespace details {

inline constexpr std::int64_t nsPerSecond = 1000000000;

// Modulo 2^32, as in a timestamp. Rounded down, also before 1970.
constexpr std::uint32_t ntpSeconds(std::chrono::system_clock::time_point time) {
    constexpr std::int64_t from1900To1970 = 2208988800;
    const auto seconds = std::chrono::floor<std::chrono::seconds>(time).time_since_epoch();
    return static_cast<std::uint32_t>(seconds.count() + from1900To1970);
}

} // namespace details

/// The NTP timestamp of a time of this device's clock of the day.
constexpr std::uint64_t ntpFrom(std::chrono::system_clock::time_point time) {
    using namespace std::chrono;
    const auto ns = duration_cast<nanoseconds>(time - floor<seconds>(time)).count();
    const std::uint64_t fraction = (static_cast<std::uint64_t>(ns) << 32) / details::nsPerSecond;
    return (std::uint64_t{details::ntpSeconds(time)} << 32) + fraction;
}

/// The time of an NTP timestamp: of all the times that share it, the one within 68 years of `near`.
/// What `ntpFrom` made comes back without an error.
inline std::chrono::system_clock::time_point systemTimeFrom(
    std::uint64_t time,
    std::chrono::system_clock::time_point near = std::chrono::system_clock::now()) {
    using namespace std::chrono;
    const auto difference = static_cast<std::int32_t>(static_cast<std::uint32_t>(time >> 32) -
                                                      details::ntpSeconds(near));
    const std::uint64_t half = std::uint64_t{1} << 31;
    const std::uint64_t ns = ((time & 0xffffffff) * details::nsPerSecond + half) >> 32;
    return floor<seconds>(near) + seconds(difference) +
           duration_cast<system_clock::duration>(nanoseconds(ns));
}

/// This device's clock of the day.
inline std::uint64_t ntpNow() {
    return ntpFrom(std::chrono::system_clock::now());
}

/// The NTP timestamp of a monotonic time, past or to come, as displays and cameras give it. Reads
/// both clocks now, so the result is off by what the clock of the day is set in between, and by the
/// time that this thread is interrupted between the two: convert times that are near.
///
/// On Linux and Android `steady_clock` is CLOCK_MONOTONIC in nanoseconds, the clock of a display's
/// frame times. A camera may use CLOCK_BOOTTIME, which also counts the time asleep: subtract that
/// first.
inline std::uint64_t ntpAt(std::chrono::steady_clock::time_point time) {
    using namespace std::chrono;
    const auto fromNow = time - steady_clock::now();
    return ntpFrom(system_clock::now() + duration_cast<system_clock::duration>(fromNow));
}

/// From `from` to `to` in ms; negative if `to` is earlier. Right for times less than 68 years
/// apart.
constexpr double ntpMsBetween(std::uint64_t from, std::uint64_t to) {
    // The subtraction wraps around just as the timestamps do, so it also works across 2036.
    return static_cast<double>(static_cast<std::int64_t>(to - from)) / ntpUnitsPerMs;
}

/// `ms` later than `time`; earlier if `ms` is negative. `ms` must be a number of less than 68
/// years.
inline std::uint64_t ntpAddMs(std::uint64_t time, double ms) {
    return time + static_cast<std::uint64_t>(std::llround(ms * ntpUnitsPerMs));
}

} // namespace velta::zub::avsync
