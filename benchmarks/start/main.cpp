// Prints what loading and starting with the library costs, as rows of a Markdown table.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "benchmarks/Check.h"
#include "benchmarks/start/AnswerServer.h"
#include "benchmarks/start/Now.h"
#include "tests/support/Process.h"

namespace {

using Numbers = std::vector<long long>;
using Command = std::vector<std::string>;

// What a program prints.
Numbers run(const Command& command) {
    tests::Process process(command);
    const std::string output = process.readAll();
    benchmarks::check(process.wait() == 0, (command.front() + ": " + output).c_str());
    std::istringstream stream(output);
    Numbers numbers;
    for (long long number = 0; stream >> number;) {
        numbers.push_back(number);
    }
    benchmarks::check(!numbers.empty(), (command.front() + " prints a number").c_str());
    return numbers;
}

long long loadNs(const Command& command) {
    return run(command).front();
}

long long firstAnswerNs(const Command& command) {
    const long long start = benchmarks::nowNs();
    return run(command).front() - start;
}

// The median, and the least, which the rest of the machine has disturbed least.
struct Time {
    double medianUs;
    double leastUs;
};

Time summary(Numbers& ns) {
    std::sort(ns.begin(), ns.end());
    return {static_cast<double>(ns[ns.size() / 2]) / 1000, static_cast<double>(ns.front()) / 1000};
}

// Measures both commands in turns, so that whatever else the machine does falls on both alike.
void printComparison(const char* what, int runs, long long (*measure)(const Command&),
                     const Command& command, const char* baseName, const Command& base) {
    Numbers ns;
    Numbers baseNs;
    for (int i = 0; i < runs; ++i) {
        ns.push_back(measure(command));
        baseNs.push_back(measure(base));
    }
    const Time time = summary(ns);
    const Time baseTime = summary(baseNs);
    std::printf("| %s, µs: median, least | %.0f, %.0f |\n", what, time.medianUs, time.leastUs);
    std::printf("| ... of %s | %.0f, %.0f |\n", baseName, baseTime.medianUs, baseTime.leastUs);
    std::printf("| ... as a ratio | %.2f, %.2f |\n", time.medianUs / baseTime.medianUs,
                time.leastUs / baseTime.leastUs);
    std::fflush(stdout);
}

void printLoading(int runs) {
    const std::string cxxLibrary = "libstdc++.so.6";
    const std::string loader = LOAD_LIBRARY;
    printComparison("loading, in a process that has the C++ library", runs, loadNs,
                    {loader, cxxLibrary, LIBRARY}, "an empty library",
                    {loader, cxxLibrary, EMPTY_LIBRARY});
    printComparison("loading, the C++ library with it", runs, loadNs, {loader, LIBRARY},
                    "the C++ library alone", {loader, cxxLibrary});
}

void printFirstAnswer(int runs, const std::string& socket) {
    printComparison("from process start to first answer", runs, firstAnswerNs,
                    {FIRST_ANSWER, socket}, "plain sockets", {PLAIN_FIRST_ANSWER, socket});
}

void printMemory(const std::string& socket) {
    const Numbers numbers = run({CONNECTED_MEMORY, socket});
    benchmarks::check(numbers.size() == 9, "connected_memory prints nine numbers");
    const char* const whens[] = {"while connected", "after 1000 exchanges"};
    for (std::size_t i = 0; i < 2; ++i) {
        const long long* const memory = &numbers[3 * (i + 1)];
        std::printf("| heap held %s, bytes in blocks | %lld in %lld |\n", whens[i], memory[0],
                    memory[1]);
        std::printf("| growth of the resident set %s, KB | %lld |\n", whens[i], memory[2]);
    }
}

} // namespace

int main(int argc, char** argv) {
    int runs = 300;
    CLI::App app("Prints what loading and starting with the library costs, as Markdown rows.");
    app.add_option("--runs", runs, "Runs of each process, of which the median is printed")
        ->check(CLI::Range(1, 100000))
        ->capture_default_str();
    CLI11_PARSE(app, argc, argv);

    const benchmarks::AnswerServer server;
    printLoading(runs);
    printFirstAnswer(runs, server.path());
    printMemory(server.path());
    return EXIT_SUCCESS;
}
