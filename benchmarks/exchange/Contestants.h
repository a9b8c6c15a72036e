#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>

#include "benchmarks/Check.h"

// Each contestant requests the engine's timestamps over its own connection. The peer is a thread of
// this process that writes prepared bytes.
namespace exchange {

/// The minimum cost of an exchange: the bytes of the library's request and answer, moved with the
/// same system calls, without parsing.
void floor(benchmark::State& state);

/// The library, through its public class. Both logs write to standard error, which goes to a file
/// in memory.
void library(benchmark::State& state);

/// The same with both logs discarded. The library still formats the line and passes it to both.
void librarySilent(benchmark::State& state);

/// The alternative to a custom protocol: sd-bus, peer to peer without a bus daemon, with a method
/// that has no arguments and returns the four values.
void bus(benchmark::State& state);

/// Times `client.exchange(number)`, which returns whether the answer to request `number` is right.
template <typename Client>
void run(benchmark::State& state, Client& client) {
    std::size_t number = 0;
    for (auto _ : state) {
        benchmarks::check(client.exchange(number++), "the answer is the expected one");
    }
}

} // namespace exchange
