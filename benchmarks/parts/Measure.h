#pragma once

#include <benchmark/benchmark.h>

#include "benchmarks/Check.h"
#include "tests/replacements/Memory.h"

namespace benchmarks {

/// Times `operation`, which returns whether its result is right, and reports its allocations.
template <typename Operation>
void measure(benchmark::State& state, const Operation& operation) {
    bool isRight = true;
    const long before = tests::memory.allocations;
    for (auto _ : state) {
        isRight = operation() && isRight;
    }
    const auto allocations = static_cast<double>(tests::memory.allocations - before);
    state.counters["allocations"] =
        benchmark::Counter(allocations, benchmark::Counter::kAvgIterations);
    check(isRight, "the operation has the right result");
}

} // namespace benchmarks
