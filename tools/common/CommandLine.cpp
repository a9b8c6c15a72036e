#include "tools/common/CommandLine.h"

#include <CLI/CLI.hpp>
#include <cstdlib>

namespace tools {

namespace {

constexpr int exitUsage = 2;

} // namespace

std::optional<int> readCommandLine(CLI::App& app, int argc, char** argv,
                                   const std::function<void()>& check) {
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
