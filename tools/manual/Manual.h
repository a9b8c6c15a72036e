#pragma once

#include <string>

namespace CLI {
class App;
}

namespace manual {

/// The manual page of a program, generated from its options and commands.
std::string manualPage(const CLI::App& app);

/// Its bash completion script.
std::string bashCompletion(const CLI::App& app);

} // namespace manual
