#include <CLI/CLI.hpp>
#include <clocale>
#include <csignal>
#include <cstdlib>

#include "tools/lipsyncctl/Commands.h"
#include "tools/lipsyncctl/Options.h"

namespace {

constexpr int exitUsage = 2;

} // namespace

int main(int argc, char** argv) {
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
    return lipsyncctl::runCommand(options);
}
