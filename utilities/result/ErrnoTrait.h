#pragma once

#include <cstring>

namespace velta::utilities::result {

/// The domain of `errno` values, for the causes of failed system calls.
struct ErrnoTrait {
    /// A value of `errno`.
    using ResultCode = int;

    /// No error.
    static constexpr ResultCode successCode = 0;

    /// "Success" for 0, otherwise the platform's text (`std::strerror`). Valid until the next call
    /// on this thread.
    static const char* text(ResultCode code) {
        return code == successCode ? "Success" : std::strerror(code);
    }
};

} // namespace velta::utilities::result
