#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace azubsim {

/// What can be typed while the program runs: its words for the help, and how to carry it out.
struct Command {
    /// Carries the command out and returns the answer: one or more lines.
    using Action = std::function<std::string()>;

    /// The limits of a number and its unit, which begins with a blank.
    struct Range {
        double smallest;
        double largest;
        const char* unit = "";
        bool isWhole = true;
    };

    static constexpr std::size_t maxLine = 65536; ///< More bytes are no command.

    std::string name;
    std::string argument; ///< Its placeholder; empty if it takes none.
    std::string effect;   ///< For the help.
    /// Checks the argument without carrying the command out. Throws a `tools::Error`.
    std::function<Action(const std::string& argument)> parse;

    /// Takes no argument and answers what `carryOut` returns.
    static Command plain(const std::string& name, const std::string& effect, Action carryOut);

    /// Takes "on" or "off".
    static Command onOff(const std::string& name, const std::string& effect,
                         const std::function<void(bool)>& set);

    /// Takes a number. If the placeholder ends with "|WORD", also that word, which sets nothing.
    static Command number(const std::string& name, const std::string& argument,
                          const std::string& effect, Range range,
                          const std::function<void(std::optional<double>)>& set);

    /// Takes any text that `check` accepts; otherwise that throws a `tools::Error`.
    static Command text(const std::string& name, const std::string& argument,
                        const std::string& effect,
                        const std::function<void(const std::string&)>& check,
                        const std::function<void(const std::string&)>& set);
};

} // namespace azubsim
