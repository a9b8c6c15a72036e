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
    bool noCall = false;
    std::vector<std::string> faultTexts;
    std::vector<Fault> faults; ///< Parsed from `faultTexts`.
    unsigned int every = 1;
    std::optional<std::uint32_t> seed;
    std::size_t floodBytes = 16777216;
    std::string recordFile;
    std::string replayFile;
    bool isVerbose = false;
};

/// Declares the options. Help and manual page are generated from them.
void declareOptions(CLI::App& app, Options& options);

/// Parses the command line. Returns the exit status if the program must exit.
std::optional<int> readOptions(int argc, char** argv, Options& options);

} // namespace azubsim
