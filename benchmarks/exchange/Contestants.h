#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>

#include "benchmarks/Check.h"

// Each contestant asks for the engine's timestamps over a connection of its own. The far end is a
// thread of this process, which writes prepared bytes.
namespace exchange {

/// The least that an exchange can cost: the bytes of the library's request and answer, moved with
/// the system calls that the library makes for them, and nothing made of them.
void floor(benchmark::State& state);

/// The library, through its public class. Standard error goes to a file in memory, and the
/// platform's log to its own default, which is standard error again.
void library(benchmark::State& state);

/// The same with both logs discarded. The line is still made, and handed to both.
void librarySilent(benchmark::State& state);

/// What one would take instead of a protocol of one's own: sd-bus, from peer to peer without a bus
/// daemon, a method without arguments that returns the four values.
void bus(benchmark::State& state);

/// Times `client.exchange(number)`, which says each time whether it got the answer to the request
/// with this number.
template <typename Client>
void run(benchmark::State& state, Client& client) {
    std::size_t number = 0;
    for (auto _ : state) {
        benchmarks::check(client.exchange(number++), "the answer is the expected one");
    }
}

} // namespace exchange
