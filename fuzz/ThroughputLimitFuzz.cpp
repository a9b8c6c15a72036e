// Compares the reading of LIBLOG_THROUGHPUT_LIMIT with a parser of "%u/%u" that does not use scanf.

#include <cctype>
#include <cstdlib>
#include <string>

#include "fuzz/Check.h"
#include "log/ThroughputLimit.h"

namespace {

using velta::zub::log::ThroughputLimit;

// Reads one "%u": white space, a sign, digits. Returns null if there is none.
const char* readNumber(const char* at, std::uint32_t& number) {
    while (std::isspace(static_cast<unsigned char>(*at)) != 0) {
        ++at;
    }
    const char* const digits = at + (*at == '-' || *at == '+' ? 1 : 0);
    if (std::isdigit(static_cast<unsigned char>(*digits)) == 0) {
        return nullptr;
    }
    char* end = nullptr;
    number = static_cast<std::uint32_t>(std::strtoul(at, &end, 10));
    return end;
}

} // namespace

int fuzzThroughputLimit(const std::uint8_t* data, std::size_t size) {
    const std::string setting(reinterpret_cast<const char*>(data), size);
    const ThroughputLimit limit = ThroughputLimit::fromSetting(setting.c_str());
    std::uint32_t records = 0;
    std::uint32_t pauseMs = 0;
    const char* at = readNumber(setting.c_str(), records);
    const bool isValid = at != nullptr && *at == '/' && readNumber(at + 1, pauseMs) != nullptr;
    fuzz::check(limit.counter == 0, "counting starts at 0");
    fuzz::check(limit.limit == (isValid ? records : 0), "the limit is the expected one");
    fuzz::check(limit.pauseUs == (isValid ? pauseMs * 1000U : 0), "the pause is the expected one");
    return 0;
}
