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

/// Calls `visit` with an object of each type in the list, in order, until it returns false.
/// Returns whether it returned true for all of them.
template <typename Visit>
bool visitAll(detail::TypeNull, const Visit&) {
    return true;
}

template <typename Head, typename Tail, typename Visit>
bool visitAll(TypeList<Head, Tail>, const Visit& visit) {
    return visit(Head{}) && visitAll(Tail{}, visit);
}

} // namespace velta::utilities
