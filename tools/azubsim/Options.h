#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/azubsim/Fault.h"

namespace CLI {
class App;
}

namespace azubsim {

struct Options {
    std::string socket;
    std::string engine; ///< The socket of the engine behind a tap; empty to simulate the engine.
    bool noCall = false;
    std::string networkFile;
    std::vector<std::string> faultTexts;
    std::vector<Fault> faults; ///< Parsed from `faultTexts`.
    unsigned int every = 1;
    std::optional<std::uint32_t> seed;
    std::string scenarioFile;
    std::string recordFile;
    std::string traceFile;
    bool overwrites = false;
    std::string replayFile;
    bool isTimed = false;
    bool isVerbose = false;
};

/// Parses the command line. Returns the exit status if the program must exit.
std::optional<int> readOptions(int argc, char** argv, Options& options);

} // namespace azubsim
