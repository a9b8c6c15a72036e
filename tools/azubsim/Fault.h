#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tools/azubsim/AudioEngine.h"
#include "tools/azubsim/Document.h"
#include "tools/azubsim/Reply.h"

namespace azubsim {

/// One way to answer wrongly.
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

    /// How a fault is written and what it does.
    struct Description {
        Kind kind;
        const char* name;
        const char* argument; ///< Empty, or what follows the name.
        const char* effect;
    };

    /// All of them, in the order in which they are listed to users.
    static const std::vector<Description>& descriptions();

    /// Reads a name and its argument, for example "delay 200". False, with the reason in `error`,
    /// if it is no fault.
    static bool parse(const std::string& text, Fault& fault, std::string& error);

    /// As it was written.
    const std::string& text() const { return _text; }

    /// Spoils what is answered: first the engine's verdict, then the document, then its delivery.
    /// A flood is `floodBytes` long.
    void spoil(Verdict& verdict) const;
    void spoil(Document& document) const;
    Reply deliver(const std::string& document, std::size_t floodBytes) const;

private:
    bool setArgument(const std::string& argument, std::string& error);

    Kind _kind = Kind::Silence;
    std::string _text;
    std::string _argument;
    int _number = 0;
};

/// How an answer is delivered that is not spoiled.
Reply deliver(const std::string& document);

} // namespace azubsim
