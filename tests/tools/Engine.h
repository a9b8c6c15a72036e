#pragma once

#include <string>
#include <vector>

#include "tests/support/Silence.h"
#include "tests/support/Process.h"
#include "tests/support/TemporaryDirectory.h"

namespace tests {

/// An engine simulator that listens.
class Engine {
public:
    explicit Engine(const std::vector<std::string>& options)
        : _process(command(socket(), options)) {
        _process.readUntil("listening at");
    }

    std::string socket() const { return _directory.path() + "/engine"; }
    Process& process() { return _process; }

private:
    static std::vector<std::string> command(const std::string& socket,
                                            const std::vector<std::string>& options) {
        std::vector<std::string> words{AZUBSIM, "--socket", socket};
        words.insert(words.end(), options.begin(), options.end());
        return words;
    }

    TemporaryDirectory _directory;
    Process _process;
};

} // namespace tests
