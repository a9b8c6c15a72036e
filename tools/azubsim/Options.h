#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/azubsim/report/Replay.h"

namespace azubsim {

struct Options {
    enum class Mode { Engine, Tap, Replay, Show, Trace, Tell };

    Mode mode = Mode::Engine;
    std::string socket;
    std::string engine; ///< The socket of the engine behind a tap.
    bool noCall = false;
    std::string networkFile;
    std::vector<std::string> faults;
    unsigned int every = 1;
    std::optional<std::uint32_t> seed;
    std::vector<std::string> targets; ///< Of the faults.
    std::string scenarioFile;
    std::string recordFile;
    bool overwrites = false;
    bool isQuiet = false;
    std::string recording; ///< To replay, show or trace.
    Replay::Rules rules;
    bool follows = false;
    std::vector<std::string> command; ///< Of `tell`, in words.
};

/// Parses the command line. Returns nothing if it has printed the help or the version. Throws a
/// `tools::Error`.
std::optional<Options> readOptions(int argc, char** argv);

} // namespace azubsim
