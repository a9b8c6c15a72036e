#pragma once

#include <cstddef>
#include <string>

#include "utilities/result/Digits.h"

namespace velta::utilities::result {

template <typename Trait>
class Result;

/// How `Result::operator<<` appends a value of one type. Specialise it to support another type; a
/// type without a specialisation does not compile.
template <typename Value>
struct Append;

template <std::size_t size>
struct Append<char[size]> {
    template <typename Trait>
    static void run(Result<Trait>& target, const char (&value)[size]) {
        target.message += value;
    }
};

template <>
struct Append<const char*> {
    template <typename Trait>
    static void run(Result<Trait>& target, const char* const& value) {
        target.message += value;
    }
};

template <>
struct Append<std::string> {
    template <typename Trait>
    static void run(Result<Trait>& target, const std::string& value) {
        target.message += value;
    }
};

template <>
struct Append<char> {
    template <typename Trait>
    static void run(Result<Trait>& target, const char& value) {
        target.message += value;
    }
};

template <>
struct Append<int> {
    template <typename Trait>
    static void run(Result<Trait>& target, const int& value) {
        target.message += Digits(value);
    }
};

template <>
struct Append<unsigned long> {
    template <typename Trait>
    static void run(Result<Trait>& target, const unsigned long& value) {
        target.message += Digits(value);
    }
};

/// Adds a result of any domain as a cause.
template <typename CauseTrait>
struct Append<Result<CauseTrait>> {
    /// Appends `cause.format()`, even if that is "Success".
    template <typename Trait>
    static void run(Result<Trait>& target, const Result<CauseTrait>& cause) {
        if (!target.causes.empty()) {
            target.causes += " && ";
        }
        target.causes += cause.format();
    }
};

} // namespace velta::utilities::result
