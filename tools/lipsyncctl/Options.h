#pragma once

#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace lipsyncctl {

enum class Format { Text, Json, Csv };

enum class Command { Capabilities, MarginGet, MarginSet, Timestamps, Ping, SendVideo };

struct Options {
    std::string socket;
    Format format = Format::Text;
    std::optional<Command> command;
    unsigned long marginMs = 0;
    bool watch = false;
    unsigned int intervalMs = 1000;
    unsigned int count = 0; ///< Readings or exchanges; for readings 0 means without end.
    unsigned long capture = 0;
    unsigned long rendering = 0;
};

/// Declares the options and commands, and with them what the help and the manual page say.
void declareOptions(CLI::App& app, Options& options);

/// Reads the command line. Returns the exit status if the program has to end.
std::optional<int> readOptions(int argc, char** argv, Options& options);

} // namespace lipsyncctl
