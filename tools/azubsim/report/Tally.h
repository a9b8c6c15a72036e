#pragma once

#include <chrono>
#include <string>

#include "tools/common/Text.h"

namespace azubsim {

/// Counts what happens from the start of the program to its end.
struct Tally {
    unsigned long exchanges = 0;
    unsigned long spoiled = 0; ///< Exchanges that got a fault.
    unsigned long clients = 0; ///< That have connected.
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();

    std::string text() const {
        const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
        return tools::printed("%lu exchanges, %lu spoiled, %lu clients, %.1f s", exchanges, spoiled,
                              clients, passed.count());
    }
};

} // namespace azubsim
