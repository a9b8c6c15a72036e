#pragma once

#include <filesystem>
#include <iterator>

namespace tests {

/// The number of open descriptors, including the one that this function needs to count them.
inline auto openDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

} // namespace tests
