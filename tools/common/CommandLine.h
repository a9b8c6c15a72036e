#pragma once

#include <functional>
#include <optional>

namespace CLI {
class App;
}

namespace tools {

/// Declares --version in `app`. Parses the command line, then calls `check`, which throws a
/// `CLI::ParseError` for a missing option or an invalid value; an unknown argument is reported
/// first. Prints the help, the version or the error and returns the exit status if the program must
/// exit.
std::optional<int> readCommandLine(CLI::App& app, int argc, char** argv,
                                   const std::function<void()>& check);

} // namespace tools
