#pragma once

namespace velta::utilities {

namespace detail {

/// The end of every type list.
struct TypeNull {};

} // namespace detail

/// A compile-time list of types: the first type, and the list of the rest.
template <typename HeadType, typename TailList = detail::TypeNull>
struct TypeList {
    using Head = HeadType;
    using Tail = TailList;
};

/// Calls `visit` with an object of each type in the list, in order, until a call returns false.
/// Returns whether all calls returned true.
template <typename Visit>
constexpr bool visitAll(detail::TypeNull, const Visit&) {
    return true;
}

template <typename Head, typename Tail, typename Visit>
constexpr bool visitAll(TypeList<Head, Tail>, const Visit& visit) {
    return visit(Head{}) && visitAll(Tail{}, visit);
}

} // namespace velta::utilities
