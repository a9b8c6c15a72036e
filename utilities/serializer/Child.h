#pragma once

namespace velta::utilities::serializer {

/// One child of a record: its trait, and the functions that get and set its value in the record.
///
/// A record's trait is a class with
/// - `Type`, the type of the record;
/// - `tag`, the name of its element;
/// - `Children`, the type list of its children, in the order of reading;
/// - `initialValue()`, the record before its children are read.
template <typename ChildTrait, auto getter, auto setter>
struct Child {
    using Trait = ChildTrait;
    static constexpr auto get = getter;
    static constexpr auto set = setter;
};

} // namespace velta::utilities::serializer
