#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace tools {

/// A time since 1970 by the system's clock.
using Time = std::chrono::microseconds;

Time toTime(std::chrono::system_clock::time_point time);

inline Time now() {
    return toTime(std::chrono::system_clock::now());
}

/// From one NTP timestamp to another in ms, rounded to microseconds; negative if `end` is earlier.
double msBetween(std::uint64_t start, std::uint64_t end);

/// Local time of day with milliseconds, for example "13:05:01.250".
std::string timeOfDay(Time time);

/// Date and time in UTC as in ISO 8601, with 3 or 6 decimals: "2024-05-01T12:00:00.250Z".
std::string isoTime(Time time, int decimals = 3);

} // namespace tools
