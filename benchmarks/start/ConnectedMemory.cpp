// Prints the memory that a connected service holds, as numbers: heap bytes, heap blocks and the
// growth of the resident set in KB, once it is connected and again after 1000 exchanges.
// Usage: connected_memory SOCKET

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "lipsyncapi/Service.h"
#include "tests/replacements/Memory.h"

namespace {

long residentKb() {
    long total = 0;
    long resident = 0;
    std::FILE* const file = std::fopen("/proc/self/statm", "r");
    if (file == nullptr || std::fscanf(file, "%ld %ld", &total, &resident) != 2) {
        std::exit(EXIT_FAILURE);
    }
    std::fclose(file);
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

void print(long residentBeforeKb) {
    const tests::MemoryWatch::Usage usage = tests::MemoryWatch::usage();
    std::printf("%zu %ld %ld\n", usage.bytes, usage.blocks(), residentKb() - residentBeforeKb);
}

} // namespace

int main(int argc, char** argv) {
    // The log goes nowhere.
    if (argc != 2 || std::freopen("/dev/null", "w", stderr) == nullptr) {
        return EXIT_FAILURE;
    }
    // Makes standard output take its own memory before anything is counted.
    std::printf("0 0 0\n");
    residentKb();
    const long before = residentKb();
    const tests::MemoryWatch watch;
    velta::zub::lipsyncapi::Service service;
    if (service.connect(argv[1]).isFailure()) {
        return EXIT_FAILURE;
    }
    print(before);
    velta::zub::common::LipSyncNtpTimestamps timestamps;
    for (int exchange = 0; exchange < 1000; ++exchange) {
        if (service.getAudioTimestamps(timestamps).isFailure()) {
            return EXIT_FAILURE;
        }
    }
    print(before);
    return EXIT_SUCCESS;
}
