#pragma once

#include <chrono>
#include <cstdint>

namespace video {

// An NTP timestamp is 32.32 fixed point: its upper half counts seconds since 1900.
constexpr std::uint64_t secondsFrom1900To1970 = 2208988800;
constexpr double unitsPerSecond = 4294967296.0;

inline std::uint64_t ntpNow() {
    using namespace std::chrono;
    const double seconds = duration<double>(system_clock::now().time_since_epoch()).count();
    const auto whole = static_cast<std::uint64_t>(seconds);
    const double fraction = seconds - static_cast<double>(whole);
    return ((whole + secondsFrom1900To1970) << 32) +
           static_cast<std::uint64_t>(fraction * unitsPerSecond);
}

/// Negative if `to` is earlier than `from`.
inline double ntpMillisecondsBetween(std::uint64_t from, std::uint64_t to) {
    return static_cast<double>(static_cast<std::int64_t>(to - from)) * 1000.0 / unitsPerSecond;
}

} // namespace video
