#pragma once

#include <memory>
#include <string>
#include <vector>

#include "benchmarks/exchange/Contestant.h"

namespace exchange {

/// The first is the floor, which the others are compared with.
std::vector<std::string> contestantNames();

/// Starts the contestant's server and connects to it. The name must be one of them.
std::unique_ptr<Contestant> makeContestant(const std::string& name);

} // namespace exchange
