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
// the many errors of the templates that use it.

template <typename Trait, typename = void>
inline constexpr bool isRecord = false;
template <typename Trait>
inline constexpr bool isRecord<
    Trait, std::void_t<typename Trait::Type, typename Trait::Children, decltype(Trait::tag)>> =
    true;

template <typename Trait, typename = void>
inline constexpr bool hasTagAndInitialValue = false;
template <typename Trait>
inline constexpr bool hasTagAndInitialValue<
    Trait, std::void_t<decltype(Trait::tag), decltype(Trait::initialValue())>> = true;

template <typename T, typename Convertor, typename = void>
inline constexpr bool hasToString = false;
template <typename T, typename Convertor>
inline constexpr bool hasToString<T, Convertor,
                                  std::void_t<decltype(Convertor::toString(
                                      std::declval<const T&>(), std::declval<std::string&>()))>> =
    true;

template <typename T, typename Convertor, typename = void>
inline constexpr bool hasFromString = false;
template <typename T, typename Convertor>
inline constexpr bool hasFromString<
    T, Convertor,
    std::void_t<decltype(Convertor::fromString(std::string_view(), std::declval<T&>()))>> = true;

template <typename T, typename = void>
inline constexpr bool hasAppend = std::is_integral_v<T> || std::is_enum_v<T>;
template <typename T>
inline constexpr bool hasAppend<T, std::void_t<decltype(sizeof(result::Append<T>))>> = true;

/// Does not compile if the trait cannot be written. This template is for records.
template <typename Trait>
struct WritingCheck {
    static constexpr bool run() {
        static_assert(isRecord<Trait>,
                      "this trait cannot be written: a record's trait has Type, tag and Children");
        if constexpr (isRecord<Trait>) {
            return visitAll(typename Trait::Children{},
                            [](auto child) { return runChild<decltype(child)>(); });
        }
        return false;
    }

private:
    template <typename Child>
    static constexpr bool runChild() {
        using Type = typename Child::Trait::Type;
        constexpr bool hasGetter =
            std::is_invocable_r_v<Type, decltype(Child::get), const typename Trait::Type&>;
        static_assert(hasGetter,
                      "this trait cannot be written: a child's getter takes the record "
                      "and returns the child's value");
        return hasGetter && WritingCheck<typename Child::Trait>::run();
    }
};

template <typename T, typename Convertor>
struct WritingCheck<serializer::TextTrait<T, Convertor>> {
    static constexpr bool run() {
        static_assert(hasToString<T, Convertor>,
                      "this trait cannot be written: its convertor has no toString(value, text)");
        static_assert(hasAppend<T>,
                      "this trait cannot be written: its type has no Append, which "
                      "puts a value that has no text into a failure");
        return hasToString<T, Convertor> && hasAppend<T>;
    }
};

template <typename T, const char* const* name, bool emptyTextAllowed, typename Convertor>
struct WritingCheck<serializer::NamedTextTrait<T, name, emptyTextAllowed, Convertor>>
    : WritingCheck<serializer::TextTrait<T, Convertor>> {};

/// Does not compile if the trait cannot be read. This template is for records.
template <typename Trait>
struct ReadingCheck {
    static constexpr bool run() {
        static_assert(isRecord<Trait>,
                      "this trait cannot be read: a record's trait has Type, tag and Children");
        if constexpr (isRecord<Trait>) {
            return visitAll(typename Trait::Children{},
                            [](auto child) { return runChild<decltype(child)>(); });
        }
        return false;
    }

private:
    template <typename Child>
    static constexpr bool runChild() {
        using ChildTrait = typename Child::Trait;
        constexpr bool hasSetter = std::is_invocable_v<decltype(Child::set), typename Trait::Type&,
                                                       const typename ChildTrait::Type&>;
        static_assert(hasSetter,
                      "this trait cannot be read: a child's setter takes the record and "
                      "the child's value");
        static_assert(hasTagAndInitialValue<ChildTrait>,
                      "this trait cannot be read: a child's trait has a tag and initialValue()");
        return hasSetter && hasTagAndInitialValue<ChildTrait> && ReadingCheck<ChildTrait>::run();
    }
};

template <typename T, const char* const* name, bool emptyTextAllowed, typename Convertor>
struct ReadingCheck<serializer::NamedTextTrait<T, name, emptyTextAllowed, Convertor>> {
    static constexpr bool run() {
        static_assert(hasFromString<T, Convertor>,
                      "this trait cannot be read: its convertor has no fromString(text, value)");
        return hasFromString<T, Convertor>;
    }
};

} // namespace velta::utilities::xmlserializer::detail
