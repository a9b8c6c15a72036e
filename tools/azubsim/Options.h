#pragma once

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
    std::string networkFile;
    std::vector<std::string> commands; ///< To carry out at the start.
    std::string scenarioFile;
    std::string recordFile;
    std::string recording; ///< To replay, show or trace.
    Replay::Rules rules;
    bool follows = false;
    std::string command; ///< To tell.
};

/// Parses the command line. Returns nothing if it has printed the help or the version. Throws a
/// `tools::Error`.
std::optional<Options> readOptions(int argc, char** argv);

} // namespace azubsim
