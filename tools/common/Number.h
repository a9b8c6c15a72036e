#pragma once

#include <charconv>
#include <functional>
#include <optional>
#include <string>

namespace tools {

/// Parses the whole text as a number of this integer type: decimal digits, a minus sign if the type
/// has one, no leading zero.
template <typename Number>
std::optional<Number> parseInteger(const std::string& text) {
    Number number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return std::to_string(number) == text ? std::optional(number) : std::nullopt;
}

/// Parses the whole text as a number such as "-0.5".
std::optional<double> parseNumber(const std::string& text);

/// Without zeros at the end: "50", "-0.5". At most ten digits.
std::string formatNumber(double number);

/// Rounded to three decimals, so that it prints without digits that mean nothing. Never -0.
double rounded(double number);

/// A check for an option: an integer from `min` to `max` that is a multiple of `step`. It returns
/// what is wrong, or nothing. The option parser itself would read 020 as 16 and -20 as a very large
/// number.
std::function<std::string(const std::string&)> integerFrom(unsigned long min, unsigned long max,
                                                           unsigned long step = 1);

} // namespace tools
