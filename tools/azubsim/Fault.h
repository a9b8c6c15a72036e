#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tools/azubsim/AudioEngine.h"
#include "tools/azubsim/Document.h"
#include "tools/azubsim/Reply.h"

namespace azubsim {

/// One way to give a wrong answer.
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
        Reset,
    };

    /// The syntax and effect of a fault, for the help.
    struct Description {
        Kind kind;
        const char* name;
        const char* argument; ///< Its placeholder; empty if there is none.
        const char* effect;
    };

    /// All faults, in the order of the help.
    static const std::vector<Description>& descriptions();

    /// Parses a name and its argument, for example "delay 200". Returns false, with the reason in
    /// `error`, if the text is not a fault.
    static bool parse(const std::string& text, Fault& fault, std::string& error);

    /// The text that was parsed.
    const std::string& text() const { return _text; }

    /// Applies the fault to the engine's verdict. Call it before the document is built.
    void spoil(Verdict& verdict) const;

    /// Applies the fault to the answer and its delivery. A flood has `floodBytes` bytes.
    Reply answer(Document document, std::size_t floodBytes) const;

private:
    bool setArgument(const std::string& argument, std::string& error);

    Kind _kind = Kind::Silence;
    std::string _text;
    std::string _argument;
    int _number = 0;
};

/// Delivers an answer without a fault.
Reply deliver(const std::string& document);

} // namespace azubsim
