#pragma once

namespace velta::utilities::serializer {

/// A value held in one text node.
template <typename T, typename ConvertorType>
struct TextTrait {
    using Type = T;
    using Convertor = ConvertorType;
    static Type initialValue() { return Type{}; }
};

} // namespace velta::utilities::serializer
