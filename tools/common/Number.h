#pragma once

#include <charconv>
#include <functional>
#include <optional>
#include <string>
#include <system_error>

namespace tools {

/// Parses the whole text as a number of this integer type: decimal digits, a minus sign if the type
/// has one, no leading zero.
template <typename Number>
std::optional<Number> parseInteger(const std::string& text) {
    const char* const end = text.data() + text.size();
    Number number = 0;
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    const std::size_t sign = text.substr(0, 1) == "-" ? 1 : 0;
    const bool hasLeadingZero = text.size() > sign + 1 && text[sign] == '0';
    if (error != std::errc() || rest != end || hasLeadingZero) {
        return std::nullopt;
    }
    return number;
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
