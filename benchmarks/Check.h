#pragma once

#include <stdexcept>
#include <string>

namespace benchmarks {

/// Ends the run if a result is wrong: the cost of a wrong result means nothing.
inline void check(bool holds, const char* what) {
    if (!holds) {
        throw std::runtime_error(std::string("Does not hold: ") + what);
    }
}

} // namespace benchmarks
