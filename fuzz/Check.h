#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

// Each fuzzer, which libFuzzer or a test calls with every input. A program for libFuzzer renames
// its fuzzer to the name that libFuzzer expects.
using Fuzzer = int(const std::uint8_t* data, std::size_t size);
extern "C" {
Fuzzer fuzzApiLog;
Fuzzer fuzzDocument;
Fuzzer fuzzExchange;
Fuzzer fuzzNumber;
Fuzzer fuzzThroughputLimit;
}

namespace fuzz {

/// Aborts if `holds` is false; libFuzzer then saves the input.
inline void check(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "Does not hold: %s\n", what);
        std::abort();
    }
}

} // namespace fuzz
