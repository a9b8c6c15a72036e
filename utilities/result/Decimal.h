#pragma once

#include <charconv>
#include <cstddef>
#include <string_view>

namespace velta::utilities::result {

/// The decimal digits of an integer, for messages and log lines. A stream would follow the caller's
/// global locale, which may group digits; this does not. Takes no memory.
class Decimal {
public:
    /// Any integer of up to 64 bits.
    template <typename Integer>
    explicit Decimal(Integer value)
        : _end(std::to_chars(_digits, _digits + sizeof(_digits), value).ptr) {}

    /// The digits, with a minus sign before them if there is one. They live as long as this object.
    operator std::string_view() const {
        return {_digits, static_cast<std::size_t>(_end - _digits)};
    }

private:
    char _digits[20]; // Enough for 64 bits: 20 digits, or a sign and 19.
    const char* _end;
};

} // namespace velta::utilities::result
