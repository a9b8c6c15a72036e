#pragma once

#include <string>

#include "tools/azubsim/Simulator.h"

namespace azubsim {

/// Reads commands from standard input and changes the simulator's settings.
class Console {
public:
    explicit Console(Simulator& simulator);

    /// Prints the prompt if standard input is a terminal.
    void prompt() const;

    /// Reads available input and executes its lines. Returns false at end of input and after
    /// "quit", which also sets `wantsToQuit`.
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
