// Compares the cost of one `getAudioTimestamps` with other ways to get the same values. Client and
// peer share one core: otherwise waking the other core costs more than everything else.

#include <sched.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>

#include "benchmarks/exchange/Contestants.h"

namespace {

// Stays on the current core. The scheduler chose it, so it is not the busiest one.
void stayOnOneCore() {
    cpu_set_t cores;
    CPU_ZERO(&cores);
    CPU_SET(static_cast<std::size_t>(sched_getcpu()), &cores);
    benchmarks::check(sched_setaffinity(0, sizeof(cores), &cores) == 0,
                      "the process stays on one core");
}

void add(const char* name, void (*contestant)(benchmark::State&)) {
    benchmark::RegisterBenchmark(name, contestant)->Iterations(1000)->UseRealTime();
}

} // namespace

int main(int argc, char** argv) {
    // If the peer closes the connection, report an error instead of dying from the signal.
    std::signal(SIGPIPE, SIG_IGN);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    try {
        stayOnOneCore();
        add("floor", exchange::floor);
        add("library", exchange::library);
        add("library-silent", exchange::librarySilent);
        add("sd-bus", exchange::bus);
        benchmark::RunSpecifiedBenchmarks();
    } catch (const std::exception& e) {
        std::fprintf(stderr, "exchange_benchmark: %s\n", e.what());
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
