#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace azubsim {

class AudioEngine;
class FaultPlan;

/// The commands that can be given while the program runs: their words for the help, and how to
/// carry them out.
class Commands {
public:
    /// Carries a command out and returns the answer: one or more lines.
    using Action = std::function<std::string()>;

    /// What the help says of a command.
    struct Words {
        const char* name;
        const char* argument; ///< Its placeholder; empty if it takes none.
        const char* effect;
        const char* initial = ""; ///< Of a setting: the argument that is in force at the start.
    };

    struct Range {
        double smallest;
        double largest;
        bool isWhole = true;
    };

    /// With "help" and "status".
    Commands();

    Commands(const Commands&) = delete;
    Commands& operator=(const Commands&) = delete;

    /// A command without an argument. Answers what `carryOut` returns.
    void addPlain(const Words& words, Action carryOut);

    /// Takes any text for which `parse` returns a change. `parse` throws a `tools::Error` if the
    /// text is not good, and changes nothing. Answers the command itself.
    void addText(const Words& words,
                 const std::function<std::function<void()>(const std::string&)>& parse);

    /// Takes "on" or "off".
    void addOnOff(const Words& words, const std::function<void(bool)>& set);

    /// Takes a number. If the placeholder ends with "|WORD", also that word, which sets nothing.
    void addNumber(const Words& words, const Range& range,
                   const std::function<void(std::optional<double>)>& set);

    /// Adds lines to the answer of "status", which has all settings.
    void addStatus(const Action& lines) { _status.push_back(lines); }

    /// Adds lines to `help` that say what arguments can be.
    void addHelp(const std::string& lines) { _arguments += lines; }

    /// Checks a line without carrying it out. Throws a `tools::Error`. The action must not outlive
    /// this object.
    Action parse(const std::string& line) const;

    /// One line for each command, with its syntax and its effect, and what arguments can be.
    std::string help() const;

private:
    struct Command {
        Words words;
        std::function<Action(const std::string& argument)> parse;
        std::shared_ptr<std::string> value; ///< Of a setting: the argument in force.
    };

    std::string status() const;

    std::vector<Command> _commands;
    std::vector<Action> _status;
    std::string _arguments;
};

/// Adds the commands that change a simulated engine, and its lines of "status".
void addEngineCommands(Commands& commands, AudioEngine& engine);

/// The same for faults.
void addFaultCommands(Commands& commands, FaultPlan& faults);

} // namespace azubsim
