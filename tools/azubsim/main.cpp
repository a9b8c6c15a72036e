#include <asio/io_context.hpp>
#include <asio/signal_set.hpp>
#include <clocale>
#include <csignal>
#include <cstdlib>

#include "tools/azubsim/Options.h"
#include "tools/azubsim/Program.h"
#include "tools/common/StandardDescriptors.h"

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
    asio::signal_set endSignals(io, SIGINT, SIGTERM, SIGHUP);
    endSignals.add(SIGQUIT);
    endSignals.async_wait([&](const asio::error_code&, int) { program.stop(); });
    return program.run() ? EXIT_SUCCESS : EXIT_FAILURE;
}
