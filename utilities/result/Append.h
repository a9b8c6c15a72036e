#pragma once

#include <cstddef>
#include <string>

#include "utilities/result/Decimal.h"

namespace velta::utilities::result {

template <typename Trait>
class Result;

/// How `Result::operator<<` appends a value of one type. Specialise it to make a type printable
/// in results; an unknown type does not compile.
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
        target.message += Decimal(value);
    }
};

template <>
struct Append<unsigned long> {
    template <typename Trait>
    static void run(Result<Trait>& target, const unsigned long& value) {
        target.message += Decimal(value);
    }
};

/// A result of any domain becomes a cause.
template <typename CauseTrait>
struct Append<Result<CauseTrait>> {
    /// Appends the formatted text of `cause`, which is "Success" for a success.
    template <typename Trait>
    static void run(Result<Trait>& target, const Result<CauseTrait>& cause) {
        if (!target.causes.empty()) {
            target.causes += " && ";
        }
        target.causes += cause.format();
    }
};

} // namespace velta::utilities::result
