#pragma once

#include <functional>
#include <optional>

namespace CLI {
class App;
}

namespace manual {

/// Reads a command line into what the program has declared. `check` throws a `CLI::ParseError` for
/// what the parser is not to complain of before it has named a wrong word. Returns the exit status
/// if the program has to end, having printed its help or what is wrong.
std::optional<int> readCommandLine(CLI::App& app, int argc, char** argv,
                                   const std::function<void()>& check);

} // namespace manual
