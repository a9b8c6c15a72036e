#pragma once

#include <string>
#include <vector>

#include "tools/azubsim/AudioEngine.h"

namespace azubsim {

struct Element {
    std::string name;
    std::string text;
    std::vector<Element> children;
};

/// The document of an answer; it is valid unless a fault has changed it.
struct Document {
    std::string version = "0.1.0";
    Element command;

    /// The document on one line, without the end marker.
    std::string print() const;
};

Document timestampsAnswer(const Timestamps& timestamps, const Verdict& verdict);
Document delayAnswer(const Verdict& verdict);

} // namespace azubsim
