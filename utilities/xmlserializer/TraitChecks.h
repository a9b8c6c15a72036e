#pragma once

#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "utilities/TypeList.h"
#include "utilities/result/Append.h"
#include "utilities/serializer/NamedTextTrait.h"
#include "utilities/serializer/TextTrait.h"

namespace velta::utilities::xmlserializer::detail {

// These checks run before a trait is used, so that a mistake in it is one error in words and not
// the many errors of the templates that use it. They return whether the trait may be used. The last
// overload of each is for records.

/// Whether `Expression<Types...>` compiles. The first argument is void.
template <typename, template <typename...> class Expression, typename... Types>
inline constexpr bool isValid = false;
template <template <typename...> class Expression, typename... Types>
inline constexpr bool isValid<std::void_t<Expression<Types...>>, Expression, Types...> = true;

template <typename Trait>
using RecordParts =
    std::void_t<typename Trait::Type, typename Trait::Children, decltype(Trait::tag)>;
template <typename Trait, typename Child>
using Getter =
    std::enable_if_t<std::is_invocable_r_v<typename Child::Trait::Type, decltype(Child::get),
                                           const typename Trait::Type&>>;
template <typename Trait, typename Child>
using Setter =
    std::void_t<std::enable_if_t<std::is_invocable_v<decltype(Child::set), typename Trait::Type&,
                                                     const typename Child::Trait::Type&>>,
                decltype(Child::Trait::tag), decltype(Child::Trait::initialValue())>;
template <typename T, typename Convertor>
using ToString =
    decltype(Convertor::toString(std::declval<const T&>(), std::declval<std::string&>()));
template <typename T, typename Convertor>
using FromString = decltype(Convertor::fromString(std::string_view(), std::declval<T&>()));
template <typename T>
using Append = decltype(sizeof(result::Append<T>));

template <typename T, typename Convertor>
constexpr bool checkWriting(serializer::TextTrait<T, Convertor>) {
    constexpr bool hasToString = isValid<void, ToString, T, Convertor>;
    static_assert(hasToString,
                  "this trait cannot be written: its convertor has no toString(value, text)");
    constexpr bool hasAppend =
        std::is_integral_v<T> || std::is_enum_v<T> || isValid<void, Append, T>;
    static_assert(hasAppend,
                  "this trait cannot be written: its type has no Append, which puts a "
                  "value that has no text into a failure");
    return hasToString && hasAppend;
}

template <typename T, const char* const* name, bool emptyTextAllowed, typename Convertor>
constexpr bool checkWriting(
    serializer::NamedTextTrait<T, name, emptyTextAllowed, Convertor> trait) {
    return checkWriting(typename decltype(trait)::Text{});
}

template <typename Trait>
constexpr bool checkWriting(Trait) {
    constexpr bool isRecord = isValid<void, RecordParts, Trait>;
    static_assert(isRecord,
                  "this trait cannot be written: a record's trait has Type, tag and Children");
    if constexpr (isRecord) {
        return visitAll(typename Trait::Children{}, [](auto child) {
            constexpr bool hasGetter = isValid<void, Getter, Trait, decltype(child)>;
            static_assert(hasGetter,
                          "this trait cannot be written: a child's getter takes the "
                          "record and returns the child's value");
            if constexpr (hasGetter) {
                return checkWriting(typename decltype(child)::Trait{});
            }
            return false;
        });
    }
    return false;
}

template <typename T, const char* const* name, bool emptyTextAllowed, typename Convertor>
constexpr bool checkReading(serializer::NamedTextTrait<T, name, emptyTextAllowed, Convertor>) {
    constexpr bool hasFromString = isValid<void, FromString, T, Convertor>;
    static_assert(hasFromString,
                  "this trait cannot be read: its convertor has no fromString(text, value)");
    return hasFromString;
}

template <typename Trait>
constexpr bool checkReading(Trait) {
    constexpr bool isRecord = isValid<void, RecordParts, Trait>;
    static_assert(isRecord,
                  "this trait cannot be read: a record's trait has Type, tag and Children");
    if constexpr (isRecord) {
        return visitAll(typename Trait::Children{}, [](auto child) {
            constexpr bool hasSetter = isValid<void, Setter, Trait, decltype(child)>;
            static_assert(hasSetter,
                          "this trait cannot be read: a child's setter takes the record "
                          "and the child's value, whose trait has a tag and initialValue()");
            if constexpr (hasSetter) {
                return checkReading(typename decltype(child)::Trait{});
            }
            return false;
        });
    }
    return false;
}

} // namespace velta::utilities::xmlserializer::detail
