#pragma once

namespace velta::utilities {

namespace detail {

/// Ends every type list.
struct TypeNull {};

} // namespace detail

/// A compile-time list of types: a head and the list of the others.
template <typename HeadType, typename TailList = detail::TypeNull>
struct TypeList {
    using Head = HeadType;
    using Tail = TailList;
};

} // namespace velta::utilities
