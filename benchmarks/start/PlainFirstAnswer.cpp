// Does what first_answer does with system calls alone: it sends a fixed request, and searches the
// answer for what it expects. Usage: plain_first_answer SOCKET

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "benchmarks/start/Now.h"

namespace {

constexpr char request[] =
    "<?xml version=\"1.0\" ?><AZUB version=\"0.1.0\"><GetAudioTs_Request /></AZUB>\n\n";

int connectTo(const char* path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path, sizeof(address.sun_path) - 1);
    const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
    return connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0 ? fd : -1;
}

bool getAnswer(int fd) {
    constexpr ssize_t requestSize = sizeof(request) - 1;
    char answer[4096];
    std::size_t size = 0;
    if (write(fd, request, requestSize) != requestSize) {
        return false;
    }
    do {
        const ssize_t n = read(fd, answer + size, sizeof(answer) - 1 - size);
        if (n <= 0) {
            return false;
        }
        size += static_cast<std::size_t>(n);
        answer[size] = '\0';
    } while (std::strstr(answer, "\n\n") == nullptr);
    return std::strstr(answer, "<jitter_buffer_depth>60<") != nullptr;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 || std::freopen("/dev/null", "w", stderr) == nullptr) {
        return EXIT_FAILURE;
    }
    if (!getAnswer(connectTo(argv[1]))) {
        return EXIT_FAILURE;
    }
    std::printf("%lld\n", benchmarks::nowNs());
    return EXIT_SUCCESS;
}
