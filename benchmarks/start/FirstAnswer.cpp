// Gets one answer from the engine at a socket. Usage: first_answer SOCKET

#include <cstdio>
#include <cstdlib>

#include "lipsyncapi/Service.h"

int main(int argc, char** argv) {
    // Discard the log.
    if (argc != 2 || std::freopen("/dev/null", "w", stderr) == nullptr) {
        return EXIT_FAILURE;
    }
    velta::zub::lipsyncapi::Service service;
    velta::zub::common::LipSyncNtpTimestamps timestamps;
    return service.connect(argv[1]).isSuccess() &&
                   service.getAudioTimestamps(timestamps).isSuccess()
               ? EXIT_SUCCESS
               : EXIT_FAILURE;
}
