#pragma once

#include <string>
#include <utility>

#include "utilities/result/Append.h"
#include "utilities/result/Digits.h"

namespace velta::utilities::result {

/// The text that a trait returns for a code that is not in its table.
inline constexpr const char* unreachableText = "Invalid error (Unreachable)";

/// The outcome of an operation: a code, a message from the function that produced it, and the
/// formatted text of the lower-level results that caused it.
///
/// A value type; one thread at a time for each object. `Trait` describes the domain, that is, one
/// set of codes: `ResultCode` is their type, `successCode` the only code that means success, and
/// `text(ResultCode)` returns the fixed text of a code.
///
/// The only exception thrown is `std::bad_alloc`.
template <typename Trait>
class Result {
public:
    /// The type of the domain's codes.
    using ResultCode = typename Trait::ResultCode;

    /// A result with this code and no texts. Implicit, so that a function can return just a code.
    Result(ResultCode resultCode) : code(resultCode) {}

    /// Translates a result of another domain. A success becomes `codeOnSuccess` without texts; a
    /// failure becomes `codeOnFailure` with `source.format()` as its cause.
    template <typename SourceTrait>
    Result(const Result<SourceTrait>& source, ResultCode codeOnFailure, ResultCode codeOnSuccess)
        : code(source.isSuccess() ? codeOnSuccess : codeOnFailure) {
        if (source.isFailure()) {
            causes = source.format();
        }
    }

    /// A success without texts, valid until the process exits. Any thread.
    static const Result& success() {
        static const Result value(Trait::successCode);
        return value;
    }

    /// Whether the code is `successCode`.
    bool isSuccess() const { return code == Trait::successCode; }

    /// Whether the code is not `successCode`.
    bool isFailure() const { return !isSuccess(); }

    /// Appends text, a character or a number to `message`, or another result to `causes`. Returns
    /// this result.
    template <typename Value>
    Result& operator<<(const Value& value) & {
        Append<Value>::run(*this, value);
        return *this;
    }

    /// The same for a temporary, so that a function can build a failure in its `return` without a
    /// copy. The reference is valid until the end of the statement: bind a value to it.
    template <typename Value>
    Result&& operator<<(const Value& value) && {
        return std::move(*this << value);
    }

    /// Returns `message`, followed by `causes` in braces if there are any.
    std::string getMainMessage() const {
        std::string text = message;
        if (!causes.empty()) {
            text += text.empty() ? "{" : " {";
            text += causes;
            text += '}';
        }
        return text;
    }

    /// Returns "Success", or the text of the code, its number, the main message and the trailer, in
    /// this order.
    std::string format() const {
        if (isSuccess()) {
            return "Success";
        }
        std::string text = Trait::text(code);
        text += " (Code ";
        text += Digits(static_cast<int>(code));
        text += ')';
        const std::string details = getMainMessage();
        if (!details.empty()) {
            text += ": ";
            text += details;
        }
        text += trailer;
        return text;
    }

    ResultCode code;     ///< One of the domain's codes, or a number outside its table.
    std::string message; ///< Details from the function that produced the result.
    std::string trailer; ///< Printed last, unchanged.
    std::string causes;  ///< Formatted causes, joined by " && ".
};

} // namespace velta::utilities::result
