#pragma once

#include <chrono>
#include <random>
#include <string>
#include <vector>

#include "tools/azubsim/protocol/Reply.h"

namespace azubsim {

/// One way to spoil an answer.
class Fault {
public:
    enum class Kind {
        Error,
        Version,
        Element,
        Missing,
        Number,
        Cut,
        CloseBefore,
        CloseMiddle,
        Split,
        Double,
        Zero,
        Silence,
        Delay,
        Flood,
    };

    /// The syntax and effect of a fault, for the help.
    struct Entry {
        Kind kind;
        const char* name;
        const char* argument; ///< Its placeholder; empty if there is none, in brackets if optional.
        const char* effect;
    };

    /// All faults, in the order of the help.
    static const std::vector<Entry>& all();

    /// One line for each of them: its syntax and its effect.
    static std::string table();

    /// Parses a name and its argument, for example "delay 200". Throws a `tools::Error` if the text
    /// is not a fault.
    explicit Fault(const std::string& text);

    /// The text that was parsed.
    const std::string& text() const { return _text; }

    /// Applies the fault to an answer without its end marker. An answer that is not XML keeps its
    /// text.
    Reply apply(const std::string& answer, std::mt19937& random) const;

private:
    void setArgument(const std::string& argument);
    void setDelay(const std::string& argument);
    std::chrono::milliseconds drawDelay(std::mt19937& random) const;

    Kind _kind = Kind::Silence;
    std::string _text;
    std::string _argument;
    int _number = 0;
    int _spread = 0;
};

/// Delivers an answer without a fault.
Reply deliver(const std::string& answer);

} // namespace azubsim
