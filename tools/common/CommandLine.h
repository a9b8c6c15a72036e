#pragma once

namespace CLI {
class App;
}

namespace tools {

/// Declares --version in `app`, breaks the lines of its help at 80 columns, and parses the command
/// line. Returns false if it has printed the help or the version instead, so that the tool must end
/// with status 0. Throws an `Error` for wrong usage.
bool parseCommandLine(CLI::App& app, int argc, char** argv);

} // namespace tools
