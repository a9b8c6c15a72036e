#pragma once

#include <charconv>
#include <cstddef>
#include <string_view>

namespace velta::utilities::result {

/// The decimal digits of an integer, for messages and log lines. Unlike a stream, it ignores the
/// global locale, which may group digits. Does not allocate.
class Digits {
public:
    /// Takes any integer of up to 64 bits.
    template <typename Integer>
    explicit Digits(Integer value)
        : _end(std::to_chars(_digits, _digits + sizeof(_digits), value).ptr) {}

    /// The digits, after a minus sign if the value is negative. Valid as long as this object.
    operator std::string_view() const {
        return {_digits, static_cast<std::size_t>(_end - _digits)};
    }

private:
    char _digits[20] = {}; // Enough for 64 bits: 20 digits, or a sign and 19.
    const char* _end;
};

} // namespace velta::utilities::result
