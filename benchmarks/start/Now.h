#pragma once

#include <time.h>

namespace benchmarks {

/// Nanoseconds of a clock that all processes share.
inline long long nowNs() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000000000LL + now.tv_nsec;
}

} // namespace benchmarks
