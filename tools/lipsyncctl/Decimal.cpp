#include "tools/lipsyncctl/Decimal.h"

#include <charconv>
#include <optional>
#include <system_error>

namespace lipsyncctl {

namespace {

std::optional<unsigned long> parse(const std::string& text) {
    const char* const end = text.data() + text.size();
    unsigned long number = 0;
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    const bool hasLeadingZero = text.size() > 1 && text[0] == '0';
    if (error != std::errc() || rest != end || hasLeadingZero) {
        return std::nullopt;
    }
    return number;
}

} // namespace

std::function<std::string(const std::string&)> decimal(unsigned long min, unsigned long max,
                                                       unsigned long step) {
    std::string allowed =
        "a decimal number from " + std::to_string(min) + " to " + std::to_string(max);
    if (step > 1) {
        allowed += " in steps of " + std::to_string(step);
    }
    return [=](const std::string& text) -> std::string {
        const auto number = parse(text);
        const bool isAllowed = number && *number >= min && *number <= max && *number % step == 0;
        return isAllowed ? "" : "'" + text + "' is not " + allowed;
    };
}

} // namespace lipsyncctl
