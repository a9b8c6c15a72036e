#pragma once

#include <string>

namespace CLI {
class App;
}

namespace manual {

/// The manual page of a program, from what its help is made of.
std::string manualPage(const CLI::App& app);

/// A script that completes a program's commands and options in bash, from the same source.
std::string bashCompletion(const CLI::App& app);

} // namespace manual
