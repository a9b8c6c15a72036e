#pragma once

#include <functional>
#include <string>

namespace CLI {
class App;
}

namespace tools {

/// What `main` does: prepares the standard descriptors, the locale and SIGPIPE, calls `body`, and
/// checks that standard output was written. An `Error` is printed as "NAME: text". Returns the exit
/// status.
int runTool(const char* name, const std::function<int()>& body);

/// Prints one line to standard error, with the tool's name before it and as `printable` makes it.
void complain(const std::string& text);

/// Throws an `Error` if something that was written to `std::cout` is lost, for example because the
/// reader has gone. Call it where a tool that goes on for long can stop.
void checkOutput();

/// Declares --version and --help-all in `app`, and parses the command line. Returns false if it has
/// printed the help or the version instead, so that the tool must end with status 0. Throws an
/// `Error` for wrong usage. Descriptions start in column 25 of the help; their line breaks stay.
bool parseCommandLine(CLI::App& app, int argc, char** argv);

} // namespace tools
