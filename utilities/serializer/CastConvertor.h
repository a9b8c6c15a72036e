#pragma once

#include <string>
#include <string_view>

#include "utilities/serializer/Convertor.h"

namespace velta::utilities::serializer {

/// Converts a type by way of another type, for example an enumeration by way of `int`.
template <typename T, typename Via>
struct CastConvertor {
    static bool toString(const T& value, std::string& text) {
        return Convertor<Via>::toString(static_cast<Via>(value), text);
    }

    /// After a failure `value` is unchanged.
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
