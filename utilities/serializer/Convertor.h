#pragma once

#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>

#include "utilities/result/Decimal.h"

namespace velta::utilities::serializer {

/// Converts an integer to text and back. A number's text is bare: decimal, or hexadecimal behind
/// "0x"; no white space; no minus sign for an unsigned type; nothing behind the digits. A plus sign
/// is allowed, and form feeds in front, as a stream allows them. The caller's locale has no say.
template <typename T>
struct Convertor {
    static_assert(std::is_integral<T>::value, "a type of its own needs a convertor of its own");

    static bool toString(const T& value, std::string& text) {
        text = result::Decimal(value);
        return true;
    }

    /// Writes `value` only on success.
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
    // A minus sign is left only for the plain form, and there for signed types.
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

/// Text is taken as it is.
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
