#pragma once

#include "utilities/serializer/TextTrait.h"

namespace velta::utilities::serializer {

/// A value that stands as text in an element named `*elementName`. With `emptyTextAllowed` an
/// element without text reads as the empty value; otherwise that is a failure.
template <typename T, const char* const* elementName, bool emptyTextAllowed, typename Convertor>
struct NamedTextTrait {
    using Type = T;
    using Text = TextTrait<T, Convertor>;
    static constexpr const char* tag = *elementName;
    static constexpr bool allowEmptyText = emptyTextAllowed;
    static Type initialValue() { return Type{}; }
};

} // namespace velta::utilities::serializer
