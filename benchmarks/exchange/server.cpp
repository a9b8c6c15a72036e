// The far end of one contestant: takes the first connection to the socket that it finds as its
// standard input, and answers until the client goes.

#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>

#include "benchmarks/exchange/BusPeer.h"
#include "benchmarks/exchange/TextPeer.h"

namespace {

// One write: an answer fits into the socket's buffer, which is empty.
void writeAnswer(int fd, const std::string& answer) {
    if (write(fd, answer.data(), answer.size()) != static_cast<ssize_t>(answer.size())) {
        throw std::runtime_error("cannot write an answer");
    }
}

// Both protocols go this way; what differs between them is a few comparisons.
template <typename Peer>
void serve(int fd, Peer peer) {
    char buffer[4096];
    std::size_t size = 0;
    for (;;) {
        const ssize_t n = read(fd, buffer + size, sizeof(buffer) - size);
        if (n <= 0) {
            return;
        }
        size += static_cast<std::size_t>(n);
        const std::string_view received(buffer, size);
        if (peer.isComplete(received)) {
            writeAnswer(fd, peer.answer(received));
            size = 0;
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    const std::string_view protocol = argc == 2 ? argv[1] : "";
    if (protocol != "text" && protocol != "bus") {
        std::fputs("Usage: exchange_server text|bus <LISTENING-SOCKET\n", stderr);
        return EXIT_FAILURE;
    }
    const int fd = accept(STDIN_FILENO, nullptr, nullptr);
    try {
        if (protocol == "text") {
            serve(fd, exchange::TextPeer());
        } else {
            serve(fd, exchange::BusPeer());
        }
    } catch (const std::exception& e) {
        std::fprintf(stderr, "exchange_server: %s\n", e.what());
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
