#pragma once

#include <string>
#include <vector>

#include "tools/azubsim/control/Command.h"

namespace azubsim {

class AudioEngine;
class FaultPlan;

/// The commands of a mode.
class Commands {
public:
    /// With "help" and "status".
    Commands();

    Commands(const Commands&) = delete;
    Commands& operator=(const Commands&) = delete;

    void add(const Command& command) { _commands.push_back(command); }
    void addEngine(AudioEngine& engine);
    void addFaults(FaultPlan& faults);

    /// Adds lines to the answer of "status".
    void addStatus(const Command::Action& lines) { _status.push_back(lines); }

    /// Checks a line without carrying it out. Throws a `tools::Error`. The action must not outlive
    /// this object.
    Command::Action parse(const std::string& line) const;

    /// One line for each command: its syntax and its effect.
    std::string table() const;

private:
    std::vector<Command> _commands;
    std::vector<Command::Action> _status;
    std::string _arguments; ///< What "help" says of them.
};

} // namespace azubsim
