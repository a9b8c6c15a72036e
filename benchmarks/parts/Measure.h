#pragma once

#include <benchmark/benchmark.h>

#include "benchmarks/Check.h"
#include "tests/replacements/Memory.h"

namespace benchmarks {

/// While it lives, counts what this thread takes from operator new; afterwards the benchmark shows
/// it as allocations for one iteration.
class AllocationCount {
public:
    explicit AllocationCount(benchmark::State& state)
        : _state(state), _before(tests::MemoryWatch::usage().allocations) {}

    ~AllocationCount() {
        const long count = tests::MemoryWatch::usage().allocations - _before;
        _state.counters["allocations"] =
            benchmark::Counter(static_cast<double>(count), benchmark::Counter::kAvgIterations);
    }

    AllocationCount(const AllocationCount&) = delete;
    AllocationCount& operator=(const AllocationCount&) = delete;

private:
    benchmark::State& _state;
    long _before;
    tests::MemoryWatch _watch;
};

/// Times `operation`, which says each time whether it came to the right result.
template <typename Operation>
void measure(benchmark::State& state, const Operation& operation) {
    bool isRight = true;
    {
        const AllocationCount count(state);
        for (auto _ : state) {
            isRight = operation() && isRight;
        }
    }
    check(isRight, "the result of a benchmark");
}

} // namespace benchmarks
