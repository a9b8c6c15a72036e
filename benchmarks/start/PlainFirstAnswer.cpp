// Does the same as first_answer, but with system calls only: sends a fixed request and searches the
// answer for the code of success. Usage: plain_first_answer SOCKET

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "benchmarks/PlainSocket.h"

namespace {

constexpr char request[] =
    "<?xml version=\"1.0\" ?><AZUB version=\"0.1.0\"><GetAudioTs_Request /></AZUB>\n\n";

// The engine sends an answer with one write, so one read gets all of it.
bool getAnswer(int fd) {
    constexpr ssize_t requestSize = sizeof(request) - 1;
    char answer[4096] = {};
    return write(fd, request, requestSize) == requestSize &&
           read(fd, answer, sizeof(answer) - 1) > 0 &&
           std::strstr(answer, "<ErrorCode>1000<") != nullptr;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 || std::freopen("/dev/null", "w", stderr) == nullptr) {
        return EXIT_FAILURE;
    }
    return getAnswer(benchmarks::connectPlainly(argv[1])) ? EXIT_SUCCESS : EXIT_FAILURE;
}
