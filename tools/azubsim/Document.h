#pragma once

#include <string>
#include <vector>

#include "tools/azubsim/AudioEngine.h"

namespace azubsim {

/// An XML element with text or children.
struct Element {
    std::string name;
    std::string text;
    std::vector<Element> children;
};

/// The document of an answer, as the protocol asks for it until a fault spoils it.
struct Document {
    std::string version = "0.1.0";
    Element command;

    /// On one line, without an end marker.
    std::string print() const;
};

Document timestampsAnswer(const Timestamps& timestamps, const Verdict& verdict);
Document delayAnswer(const Verdict& verdict);

} // namespace azubsim
