#pragma once

#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>

#include "utilities/result/Digits.h"

namespace velta::utilities::serializer {

/// Converts an integer to text and back, independently of the global locale. Writes decimal digits.
/// Reads "0x" and hexadecimal digits, or decimal digits after an optional sign; a minus sign only
/// for a signed type. Decimal text may start with form feeds, which a stream skips too. Nothing
/// else is allowed, in particular no other white space.
template <typename T>
struct Convertor {
    static_assert(std::is_integral<T>::value && !std::is_same<T, bool>::value,
                  "only for integers: other types need their own convertor");

    static bool toString(const T& value, std::string& text) {
        text = result::Digits(value);
        return true;
    }

    /// After a failure `value` is unchanged.
    static bool fromString(std::string_view text, T& value) {
        if (text.substr(0, 2) == "0x") {
            return readUnsigned(text.substr(2), 16, value);
        }
        text.remove_prefix(std::min(text.find_first_not_of('\f'), text.size()));
        if (text.substr(0, 1) == "+") {
            return readUnsigned(text.substr(1), 10, value);
        }
        return read(text, 10, value);
    }

private:
    // `from_chars` takes a minus sign for signed types, but none may follow "0x" or "+".
    static bool readUnsigned(std::string_view text, int base, T& value) {
        return text.substr(0, 1) != "-" && read(text, base, value);
    }

    static bool read(std::string_view text, int base, T& value) {
        T number{};
        const char* const end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data(), end, number, base);
        if (error != std::errc() || stop != end) {
            return false;
        }
        value = number;
        return true;
    }
};

template <>
struct Convertor<std::string> {
    static bool toString(const std::string& value, std::string& text) {
        text = value;
        return true;
    }

    static bool fromString(std::string_view text, std::string& value) {
        value = text;
        return true;
    }
};

} // namespace velta::utilities::serializer
