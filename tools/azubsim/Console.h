#pragma once

#include <string>

#include "tools/azubsim/Simulator.h"

namespace azubsim {

/// Changes the simulator by lines on standard input.
class Console {
public:
    explicit Console(Simulator& simulator);

    /// Shows the prompt, on a terminal.
    void prompt() const;

    /// Reads what there is and carries out its lines. False at the end of the input, and after
    /// "quit", which sets `wantsToQuit`.
    bool read();

    bool wantsToQuit() const { return _wantsToQuit; }

private:
    std::string execute(const std::string& line);
    std::string executeFault(const std::string& argument);
    std::string status() const;

    Simulator& _simulator;
    bool _isTerminal;
    bool _wantsToQuit = false;
    std::string _input;
};

} // namespace azubsim
