#include "tools/common/CommandLine.h"

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <string>

#include "tools/common/Printable.h"

namespace tools {

namespace {

constexpr int exitUsage = 2;

// One line, also if the command line contains control characters.
std::string usageError(const CLI::App* app, const CLI::Error& error) {
    const std::string& name = app->get_name();
    return name + ": " + printable(error.what()) + " (see " + name + " --help)\n";
}

} // namespace

std::optional<int> readCommandLine(CLI::App& app, int argc, char** argv,
                                   const std::function<void()>& check) {
    app.failure_message(usageError);
    app.set_version_flag("--version", app.get_name() + ' ' + TOOLS_VERSION,
                         "Print the version and exit");
    try {
        app.parse(argc, argv);
        check();
    } catch (const CLI::ParseError& e) {
        return app.exit(e) == 0 ? EXIT_SUCCESS : exitUsage;
    }
    return std::nullopt;
}

} // namespace tools
