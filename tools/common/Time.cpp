#include "tools/common/Time.h"

#include <ctime>

#include "avsync/Ntp.h"
#include "tools/common/Number.h"
#include "tools/common/Text.h"

namespace tools {

namespace {

using std::chrono::microseconds;
using std::chrono::seconds;

std::string formatted(Time time, const char* format, int decimals,
                      std::tm* (*convert)(const std::time_t*, std::tm*)) {
    // The fraction is positive, also before 1970.
    const seconds whole = std::chrono::floor<seconds>(time);
    const std::time_t count = whole.count();
    const long fraction = microseconds(time - whole).count();
    std::tm parts{};
    convert(&count, &parts);
    char text[64];
    std::strftime(text, sizeof(text), format, &parts);
    return text + printed(".%0*ld", decimals, decimals == 6 ? fraction : fraction / 1000);
}

} // namespace

Time toTime(std::chrono::system_clock::time_point time) {
    return std::chrono::duration_cast<Time>(time.time_since_epoch());
}

double msBetween(std::uint64_t start, std::uint64_t end) {
    return rounded(velta::zub::avsync::ntpMsBetween(start, end));
}

std::string timeOfDay(Time time) {
    return formatted(time, "%H:%M:%S", 3, localtime_r);
}

std::string isoTime(Time time, int decimals) {
    return formatted(time, "%Y-%m-%dT%H:%M:%S", decimals, gmtime_r) + 'Z';
}

} // namespace tools
