#pragma once

#include <cstring>

namespace velta::utilities::result {

/// The domain of `errno` values, appended as the cause of a failed system call. 0 is success; the
/// text of any other value is what the platform says of it when the result is formatted.
struct ErrnoTrait {
    /// An `errno` value.
    using ResultCode = int;

    /// No error.
    static constexpr ResultCode successCode = 0;

    /// What the platform says of a code, valid until the next call on this thread.
    static const char* text(ResultCode code) {
        return code == successCode ? "Success" : std::strerror(code);
    }
};

} // namespace velta::utilities::result
