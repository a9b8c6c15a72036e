#pragma once

#include <string>

namespace lipsyncctl {

enum class Format { Text, Json, Csv };

enum class Command { Capabilities, SetMargin, Timestamps, Ping };

struct Options {
    std::string socket;
    Format format = Format::Text;
    unsigned long timeoutMs = 0; ///< For each call to the engine; 0 means none.
    bool showsLog = false;
    unsigned long waitSeconds = 0; ///< Until the engine listens.
    Command command = Command::Capabilities;
    unsigned long marginMs = 0;
    bool watch = false;
    unsigned long intervalMs = 1000;
    unsigned long readings = 0;  ///< 0 means no limit.
    unsigned int maxSeconds = 0; ///< For the whole watch; 0 means no limit.
    unsigned long exchanges = 10;
};

/// Parses the command line. Returns false if it has printed the help or the version instead. Throws
/// an `Error` for wrong usage.
bool readOptions(int argc, char** argv, Options& options);

} // namespace lipsyncctl
