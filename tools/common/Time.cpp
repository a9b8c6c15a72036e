#include "tools/common/Time.h"

#include <ctime>

#include "tools/common/Number.h"
#include "tools/common/Text.h"

namespace tools {

namespace {

using std::chrono::duration_cast;
using std::chrono::microseconds;
using std::chrono::seconds;

constexpr seconds from1900To1970(2208988800);

// The fraction is positive, also before 1970.
std::string formatted(const char* format, const std::tm& time, microseconds fraction,
                      int decimals) {
    char text[64];
    std::strftime(text, sizeof(text), format, &time);
    const auto digits = decimals == 6 ? fraction.count() : fraction.count() / 1000;
    return text + printed(".%0*d", decimals, static_cast<int>(digits));
}

} // namespace

Time now() {
    return duration_cast<Time>(std::chrono::system_clock::now().time_since_epoch());
}

Time fromNtp(std::uint64_t ntp) {
    constexpr std::uint64_t half = 1ULL << 31;
    const std::uint64_t fraction = ((ntp & 0xFFFFFFFF) * 1000000 + half) >> 32;
    return seconds(ntp >> 32) - from1900To1970 + microseconds(fraction);
}

double msBetween(std::uint64_t start, std::uint64_t end) {
    constexpr double unitsPerMs = 4294967.296;
    return rounded(static_cast<double>(static_cast<std::int64_t>(end - start)) / unitsPerMs);
}

std::string timeOfDay(Time time) {
    const seconds whole = std::chrono::floor<seconds>(time);
    const std::time_t count = whole.count();
    std::tm local{};
    localtime_r(&count, &local);
    return formatted("%H:%M:%S", local, time - whole, 3);
}

std::string isoTime(Time time, int decimals) {
    const seconds whole = std::chrono::floor<seconds>(time);
    const std::time_t count = whole.count();
    std::tm utc{};
    gmtime_r(&count, &utc);
    return formatted("%Y-%m-%dT%H:%M:%S", utc, time - whole, decimals) + 'Z';
}

} // namespace tools
