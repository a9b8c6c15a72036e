#pragma once

#include <string>

#include "utilities/result/Append.h"
#include "utilities/result/Decimal.h"

namespace velta::utilities::result {

/// What a trait answers for a code that is not in its table.
inline constexpr const char* unreachableText = "Invalid error (Unreachable)";

/// The outcome of one operation of one error domain: a code, the text of whoever produced it, and
/// the formatted text of the lower-level results that caused it.
///
/// A plain value: copyable, assignable, shared with nobody; one thread at a time. `Trait` stands
/// for the domain and supplies `ResultCode` (the codes), `successCode` (the one code that means
/// success) and `text(ResultCode)` (the fixed text of a code).
///
/// Nothing here fails but for want of memory, which the allocator reports as `std::bad_alloc`.
template <typename Trait>
class Result {
public:
    /// The codes of the domain.
    using ResultCode = typename Trait::ResultCode;

    /// A result with this code and no texts. Implicit, so that an operation can return a code.
    Result(ResultCode resultCode) : code(resultCode) {}

    /// Translates a result of another domain into this one: `codeOnSuccess` without texts if
    /// `source` is a success, else `codeOnFailure` with the formatted text of `source` as cause.
    template <typename SourceTrait>
    Result(const Result<SourceTrait>& source, ResultCode codeOnFailure, ResultCode codeOnSuccess)
        : code(source.isSuccess() ? codeOnSuccess : codeOnFailure) {
        if (source.isFailure()) {
            causes = source.format();
        }
    }

    /// The domain's success, created on first use (safe from any thread) and kept until exit.
    static const Result& success() {
        static const Result value(Trait::successCode);
        return value;
    }

    /// Whether the code is the domain's success.
    bool isSuccess() const { return code == Trait::successCode; }

    /// The opposite.
    bool isFailure() const { return !isSuccess(); }

    /// Appends text, a character or a number to `message`, or another result to `causes`. Changes
    /// this result and returns a copy of it, so that a failure can be built in the expression
    /// that returns it.
    template <typename Value>
    Result operator<<(const Value& value) {
        Append<Value>::run(*this, value);
        return *this;
    }

    /// `message`, then `causes` in braces if there are any.
    std::string getMainMessage() const {
        std::string text = message;
        if (!causes.empty()) {
            text += text.empty() ? "{" : " {";
            text += causes;
            text += '}';
        }
        return text;
    }

    /// The whole result in one line: "Success", or the text of the code, its number, the main
    /// message and the trailer.
    std::string format() const {
        if (isSuccess()) {
            return "Success";
        }
        std::string text = Trait::text(code);
        text += " (Code ";
        text += Decimal(static_cast<int>(code));
        text += ')';
        const std::string details = getMainMessage();
        if (!details.empty()) {
            text += ": ";
            text += details;
        }
        text += trailer;
        return text;
    }

    ResultCode code;     ///< What happened; compare it with the domain's codes.
    std::string message; ///< Text of the producer.
    std::string trailer; ///< Printed last, as it is.
    std::string causes;  ///< Formatted causes, joined by " && ".
};

} // namespace velta::utilities::result
