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
    unsigned long timeoutMs = 0; ///< For each call to the engine; 0 means none.
    bool showsLog = false;
    std::optional<Command> command;
    unsigned long marginMs = 0;
    bool watch = false;
    unsigned long intervalMs = 1000;
    unsigned long readings = 0; ///< 0 means no limit.
    unsigned long exchanges = 10;
    unsigned long capture = 0;
    unsigned long rendering = 0;
};

/// Declares the options and commands. Help and manual page are generated from them.
void declareOptions(CLI::App& app, Options& options);

/// Parses the command line. Returns the exit status if the program must exit.
std::optional<int> readOptions(int argc, char** argv, Options& options);

} // namespace lipsyncctl
