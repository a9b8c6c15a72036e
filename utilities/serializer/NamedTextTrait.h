#pragma once

#include "utilities/serializer/TextTrait.h"

namespace velta::utilities::serializer {

/// A value held as text in an element named `*elementName`. An element without text gives the empty
/// value if `emptyTextAllowed` is set, and is a failure otherwise.
template <typename T, const char* const* elementName, bool emptyTextAllowed, typename Convertor>
struct NamedTextTrait {
    using Type = T;
    using Text = TextTrait<T, Convertor>;
    static constexpr const char* tag = *elementName;
    static constexpr bool allowEmptyText = emptyTextAllowed;
    static Type initialValue() { return Type{}; }
};

} // namespace velta::utilities::serializer
