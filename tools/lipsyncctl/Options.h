#pragma once

#include <optional>
#include <string>

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

    /// Whether a watch may end after this many readings.
    bool isEnough(unsigned long count) const { return readings > 0 && count >= readings; }
};

/// Parses the command line. Returns the exit status if the program must exit.
std::optional<int> readOptions(int argc, char** argv, Options& options);

} // namespace lipsyncctl
