#pragma once

#include <functional>
#include <string>

#include "tools/azubsim/Controls.h"

namespace azubsim {

/// The commands of the console and of scenarios.
class Commands {
public:
    explicit Commands(Controls controls);

    Commands(const Commands&) = delete;
    Commands& operator=(const Commands&) = delete;

    /// Carries a command out and returns its confirmation.
    using Action = std::function<std::string()>;

    /// Checks a line without carrying it out. Returns false, with the reason in `error`. The
    /// action must not outlive this object.
    bool parse(const std::string& line, Action& action, std::string& error) const;

    /// One line for each command, for the help: its syntax and its effect.
    static std::string table();

    /// True after "quit".
    bool hasQuit() const { return _hasQuit; }

    /// What "status" says about a scenario; empty if there is none.
    std::function<std::string()> scenarioStatus;

private:
    std::string status() const;
    std::string engineStatus() const;
    std::string faultStatus() const;

    Controls _controls;
    bool _hasQuit = false;
};

} // namespace azubsim
