#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/azubsim/Controls.h"
#include "tools/azubsim/Fault.h"

namespace azubsim {

/// One kind of command: its argument, its meaning, and how to carry it out.
struct Command {
    enum class Kind { NoArgument, Switch, WholeNumber, Number, Fault };

    /// Which source of answers the command needs, because it would have no effect with another one.
    enum class Needs { Nothing, Answers, Simulation };

    /// The argument after the check.
    struct Value {
        bool isOn = false;
        double number = 0;
        std::optional<Fault> fault;
        bool isWord = false; ///< It is the WORD of `argument`, so there is no other value.
    };

    const char* name;
    const char* argument; ///< Its placeholder, which may end with "|WORD"; empty if it takes none.
    const char* effect;   ///< For the help.
    Needs needs;
    Kind kind;
    double smallest; ///< The limits of a number.
    double largest;
    const char* unit;
    void (*apply)(const Controls& controls, const Value& value); ///< Null if it only reports.

    /// All commands, in the order of the help.
    static const std::vector<Command>& all();

    /// Null if there is none.
    static const Command* find(const std::string& name);

    /// Returns false, with the reason in `error`, if the argument is not valid.
    bool parse(const std::string& text, Value& value, std::string& error) const;

    /// The confirmation of a line that was carried out.
    std::string confirm(const std::string& line, const Value& value) const;

    /// Returns false, with the reason in `error`, if the command would have no effect.
    bool suits(Source source, std::string& error) const;

private:
    bool parseNumber(const std::string& text, double& number, std::string& error) const;
};

} // namespace azubsim
