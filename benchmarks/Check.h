#pragma once

#include <cstdio>
#include <cstdlib>

namespace benchmarks {

/// Ends the run if a result is wrong: what something costs that does not work is of no interest.
inline void check(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "Does not hold: %s\n", what);
        std::exit(EXIT_FAILURE);
    }
}

} // namespace benchmarks
