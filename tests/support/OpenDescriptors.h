#pragma once

#include <filesystem>
#include <iterator>

namespace tests {

/// How many descriptors this process has open, one for looking included.
inline auto openDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

} // namespace tests
