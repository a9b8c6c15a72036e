#pragma once

#include <string>

namespace lipsyncctl {

/// Seconds since 1970.
double now();

// Times in ms since 1970 from the other forms.
long fromSeconds(double seconds);
long fromNtp(unsigned long ntp);

/// Local time of day, with milliseconds.
std::string timeOfDay(long ms);

/// Date and time in UTC as in ISO 8601, with milliseconds.
std::string isoTime(long ms);

} // namespace lipsyncctl
