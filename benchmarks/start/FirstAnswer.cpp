// Prints when it had its first answer from the engine at a socket. Usage: first_answer SOCKET

#include <cstdio>
#include <cstdlib>

#include "benchmarks/start/Now.h"
#include "lipsyncapi/Service.h"

int main(int argc, char** argv) {
    // The log goes nowhere.
    if (argc != 2 || std::freopen("/dev/null", "w", stderr) == nullptr) {
        return EXIT_FAILURE;
    }
    velta::zub::lipsyncapi::Service service;
    velta::zub::common::LipSyncNtpTimestamps timestamps;
    if (service.connect(argv[1]).isFailure() ||
        service.getAudioTimestamps(timestamps).isFailure() || timestamps.jbmCurrentDepth != 60) {
        return EXIT_FAILURE;
    }
    std::printf("%lld\n", benchmarks::nowNs());
    return EXIT_SUCCESS;
}
