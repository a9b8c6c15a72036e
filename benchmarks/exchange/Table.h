#pragma once

#include <string>
#include <vector>

#include "benchmarks/exchange/Rounds.h"

namespace exchange {

/// Prints a Markdown table to standard output. The first series is the floor; a ratio is that of a
/// turn to the floor's turn of the same round.
void printTable(const std::vector<Series>& series, const std::string& cores);

} // namespace exchange
