#pragma once

#include <string>
#include <vector>

#include "benchmarks/exchange/Turn.h"

namespace exchange {

/// One contestant's costs, round by round.
struct Series {
    std::string name;
    std::vector<Cost> costs;
};

/// Has all contestants take turns. Each round begins with another of them, and after each has begun
/// once the order is reversed, so that none always comes behind the same one.
std::vector<Series> playRounds(int rounds, int exchanges);

} // namespace exchange
