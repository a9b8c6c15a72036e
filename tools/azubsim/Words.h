#pragma once

#include <algorithm>
#include <charconv>
#include <string>
#include <system_error>

namespace azubsim {

/// Parses the whole text as a decimal number.
template <typename Number>
bool parseNumber(const std::string& text, Number& number) {
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && rest == end;
}

/// The first word of a line and the rest of the line, both without surrounding blanks.
struct Words {
    explicit Words(const std::string& line) {
        const std::size_t start = line.find_first_not_of(' ');
        if (start == std::string::npos) {
            return;
        }
        const std::size_t end = line.find_last_not_of(" \r") + 1;
        const std::size_t firstEnd = std::min(line.find(' ', start), end);
        first = line.substr(start, firstEnd - start);
        const std::size_t restStart = line.find_first_not_of(' ', firstEnd);
        if (restStart < end) {
            rest = line.substr(restStart, end - restStart);
        }
    }

    std::string first;
    std::string rest;
};

} // namespace azubsim
