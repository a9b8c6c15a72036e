// Runs every fuzzer's checks on all inputs of its corpus.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "fuzz/Check.h"
#include "tests/support/Files.h"

namespace {

// A failed check aborts the process, so each path is printed before its check.
void run(Fuzzer& fuzzer, const std::string& name) {
    const std::string corpus = tests::sourceFile("fuzz/corpus/" + name);
    int inputs = 0;
    for (const auto& file : std::filesystem::directory_iterator(corpus)) {
        std::puts(file.path().c_str());
        std::ifstream stream(file.path(), std::ios::binary);
        const std::string input(std::istreambuf_iterator<char>(stream), {});
        fuzzer(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
        ++inputs;
    }
    EXPECT_GT(inputs, 5);
}

} // namespace

// clang-format off
TEST(Corpus, ApiLog) { run(fuzzApiLog, "ApiLog"); }
TEST(Corpus, Document) { run(fuzzDocument, "Document"); }
TEST(Corpus, Exchange) { run(fuzzExchange, "Exchange"); }
TEST(Corpus, Number) { run(fuzzNumber, "Number"); }
TEST(Corpus, ThroughputLimit) { run(fuzzThroughputLimit, "ThroughputLimit"); }
// clang-format on
