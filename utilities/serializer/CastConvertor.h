#pragma once

#include <string>
#include <string_view>

#include "utilities/serializer/Convertor.h"

namespace velta::utilities::serializer {

/// Converts a type through another one, an enumeration through its number for example.
template <typename T, typename Via>
struct CastConvertor {
    static bool toString(const T& value, std::string& text) {
        return Convertor<Via>::toString(static_cast<Via>(value), text);
    }

    /// Writes `value` only on success.
    static bool fromString(std::string_view text, T& value) {
        Via via{};
        if (!Convertor<Via>::fromString(text, via)) {
            return false;
        }
        value = static_cast<T>(via);
        return true;
    }
};

} // namespace velta::utilities::serializer
