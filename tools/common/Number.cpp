#include "tools/common/Number.h"

#include <cmath>
#include <cstdlib>

#include "tools/common/Text.h"

namespace tools {

std::optional<double> parseNumber(const std::string& text) {
    // strtod also accepts white space, hexadecimal numbers and names such as "nan".
    if (text.empty() || text.find_first_not_of("-.0123456789") != std::string::npos) {
        return std::nullopt;
    }
    char* rest = nullptr;
    // The sum turns -0 into 0.
    const double number = std::strtod(text.c_str(), &rest) + 0.0;
    return *rest == '\0' ? std::optional(number) : std::nullopt;
}

std::string formatNumber(double number) {
    return printed("%.10g", number);
}

double rounded(double number) {
    constexpr double steps = 1000;
    return std::round(number * steps) / steps + 0.0;
}

std::function<std::string(const std::string&)> integerFrom(unsigned long min, unsigned long max,
                                                           unsigned long step) {
    std::string allowed = "an integer from " + std::to_string(min) + " to " + std::to_string(max);
    if (step > 1) {
        allowed += " in steps of " + std::to_string(step);
    }
    return [=](const std::string& text) -> std::string {
        const auto number = parseInteger<unsigned long>(text);
        const bool isAllowed = number && *number >= min && *number <= max && *number % step == 0;
        return isAllowed ? "" : "'" + text + "' is not " + allowed;
    };
}

} // namespace tools
