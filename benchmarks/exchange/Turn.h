#pragma once

#include "benchmarks/exchange/Contestant.h"

namespace exchange {

/// What one exchange cost in one turn.
struct Cost {
    double ns = 0;       ///< By the clock.
    double userUs = 0;   ///< Processor time of this process.
    double systemUs = 0; ///< The same, in the kernel.
};

/// Has the contestant make `warmUp` exchanges that do not count, then `exchanges` that do.
Cost takeTurn(Contestant& contestant, int warmUp, int exchanges);

} // namespace exchange
