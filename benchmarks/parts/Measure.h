#pragma once

#include <benchmark/benchmark.h>

#include "benchmarks/Check.h"
#include "tests/replacements/Memory.h"

namespace benchmarks {

// Counting starts before the first benchmark.
inline const tests::MemoryWatch watch{0};

/// What this thread has taken from operator new so far, and what of it has not been freed.
struct Memory {
    static long allocations() { return tests::MemoryWatch::usage().allocations; }
    static long blocks() { return tests::MemoryWatch::usage().blocks(); }
};

/// Times `operation`, which says each time whether it came to the right result, and shows its
/// allocations.
template <typename Operation>
void measure(benchmark::State& state, const Operation& operation) {
    bool isRight = true;
    const long before = Memory::allocations();
    for (auto _ : state) {
        isRight = operation() && isRight;
    }
    const auto allocations = static_cast<double>(Memory::allocations() - before);
    state.counters["allocations"] =
        benchmark::Counter(allocations, benchmark::Counter::kAvgIterations);
    check(isRight, "the result of a benchmark");
}

} // namespace benchmarks
