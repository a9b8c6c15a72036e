#pragma once

#include <cstring>

namespace velta::utilities::result {

/// The domain of `errno` values, appended as the cause of a failed system call. 0 is success; the
/// text of any other value is what the platform says of it when the result is formatted.
struct ErrnoTrait {
    using ResultCode = int;
    static constexpr ResultCode successCode = 0;
    static const char* text(ResultCode code) {
        return code == successCode ? "Success" : std::strerror(code);
    }
};

} // namespace velta::utilities::result
