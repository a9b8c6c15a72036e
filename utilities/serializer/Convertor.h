#pragma once

#include <locale>
#include <sstream>
#include <string>
#include <type_traits>

namespace velta::utilities::serializer {

/// Converts a number to text and back. A number's text is bare: decimal, or hexadecimal behind
/// "0x"; no white space; no minus sign for an unsigned type; nothing behind the digits.
template <typename T>
struct Convertor {
    static bool toString(const T& value, std::string& text) {
        std::ostringstream stream;
        stream.imbue(std::locale::classic());
        stream << value;
        text = stream.str();
        return !stream.fail();
    }

    /// Writes `value` only on success.
    static bool fromString(const std::string& text, T& value) {
        if (text.find_first_of("\r\n\t\v ") != std::string::npos) {
            return false;
        }
        // A stream takes "-1" for the largest unsigned value.
        if (std::is_unsigned<T>::value && text.find('-') != std::string::npos) {
            return false;
        }
        std::stringstream stream(text);
        stream.imbue(std::locale::classic());
        if (text.compare(0, 2, "0x") == 0) {
            stream >> std::hex;
        }
        T number{};
        stream >> number;
        if (stream.fail() || !stream.eof()) {
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

    static bool fromString(const std::string& text, std::string& value) {
        value = text;
        return true;
    }
};

} // namespace velta::utilities::serializer
