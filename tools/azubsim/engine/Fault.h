#pragma once

#include <functional>
#include <random>
#include <string>

#include "tools/azubsim/protocol/Exchange.h"

namespace azubsim {

/// One way to spoil an answer.
class Fault {
public:
    /// What a fault does with an answer without its end marker.
    using Action = std::function<Reply(const std::string& answer, std::mt19937& random)>;

    /// One line for each fault: its syntax and its effect.
    static std::string table();

    /// Parses a name and its argument, for example "delay 200". Throws a `tools::Error` if the text
    /// is not a fault.
    explicit Fault(const std::string& text);

    /// The text that was parsed.
    const std::string& text() const { return _text; }

    /// Applies the fault to an answer without its end marker. An answer that is not XML keeps its
    /// text.
    Reply apply(const std::string& answer, std::mt19937& random) const {
        return _action(answer, random);
    }

private:
    std::string _text;
    Action _action;
};

/// Delivers an answer without a fault.
Reply deliver(const std::string& answer);

} // namespace azubsim
