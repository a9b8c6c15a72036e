#include <fcntl.h>

#include <CLI/CLI.hpp>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <iostream>

#include "tools/lipsyncctl/Commands.h"
#include "tools/lipsyncctl/Options.h"

namespace {

constexpr int exitUsage = 2;

// A socket must not get the number of a standard descriptor that the caller has closed.
void openStandardDescriptors() {
    for (int fd = 0; fd <= 2; ++fd) {
        if (fcntl(fd, F_GETFD) < 0) {
            static_cast<void>(open("/dev/null", O_RDWR));
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    openStandardDescriptors();
    std::setlocale(LC_CTYPE, "");
    // An engine that goes away must not take this process with it.
    std::signal(SIGPIPE, SIG_IGN);
    lipsyncctl::Options options;
    CLI::App app;
    lipsyncctl::declareOptions(app, options);
    try {
        app.parse(argc, argv);
        // Not left to the parser, which would complain of this before it names a wrong word.
        if (!options.command) {
            throw CLI::RequiredError("A command");
        }
    } catch (const CLI::ParseError& e) {
        return app.exit(e) == 0 ? EXIT_SUCCESS : exitUsage;
    }
    const int status = lipsyncctl::runCommand(options);
    if (!std::cout.flush()) {
        std::cerr << "lipsyncctl: cannot write to standard output\n";
        return EXIT_FAILURE;
    }
    return status;
}
