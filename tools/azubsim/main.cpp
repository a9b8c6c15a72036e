#include <sys/signalfd.h>

#include <asio/io_context.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <clocale>
#include <csignal>
#include <cstdlib>

#include "tools/azubsim/Options.h"
#include "tools/azubsim/Program.h"
#include "tools/common/StandardDescriptors.h"

namespace {

using asio::posix::stream_descriptor;

// Returns a descriptor that can be read when a signal asks the program to end. Unlike a handler, it
// cannot be held back by ThreadSanitizer.
int openEndSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        sigaddset(&signals, signal);
    }
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    return signalfd(-1, &signals, SFD_CLOEXEC);
}

} // namespace

int main(int argc, char** argv) {
    tools::openStandardDescriptors();
    std::setlocale(LC_CTYPE, "");
    azubsim::Options options;
    if (const auto status = azubsim::readOptions(argc, argv, options)) {
        return *status;
    }
    // Writing to a closed pipe must not kill this process.
    std::signal(SIGPIPE, SIG_IGN);
    asio::io_context io;
    azubsim::Program program(io, options);
    stream_descriptor endSignals(io, openEndSignals());
    endSignals.async_wait(stream_descriptor::wait_read,
                          [&](const asio::error_code&) { program.stop(); });
    return program.run() ? EXIT_SUCCESS : EXIT_FAILURE;
}
