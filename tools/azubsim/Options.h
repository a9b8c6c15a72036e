#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace azubsim {

struct Options {
    std::string socket;
    bool noCall = false;
    std::vector<std::string> faults;
    unsigned int every = 1;
    std::optional<std::uint32_t> seed;
    std::size_t floodBytes = 16777216;
    std::string recordFile;
    std::string replayFile;
    bool isVerbose = false;
};

/// Declares the options, and with them what the help and the manual page say.
void declareOptions(CLI::App& app, Options& options);

} // namespace azubsim
