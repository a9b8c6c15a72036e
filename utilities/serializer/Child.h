#pragma once

namespace velta::utilities::serializer {

/// One child of a record: its trait, and how to get its value from the record and set it there.
///
/// A record's trait is a class with
/// - `Type`, the record;
/// - `tag`, the name of its element;
/// - `Children`, the type list of its children, read in this order;
/// - `initialValue()`, the record that reading starts from.
template <typename ChildTrait, auto getter, auto setter>
struct Child {
    using Trait = ChildTrait;
    static constexpr auto get = getter;
    static constexpr auto set = setter;
};

} // namespace velta::utilities::serializer
