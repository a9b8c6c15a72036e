#pragma once

#include <optional>
#include <string>

#include "tools/azubsim/protocol/Timestamps.h"

namespace azubsim {

/// What an answer says. An answer to GetAudioTs has timestamps, even if it reports an error; others
/// have none.
struct Answer {
    std::string command; ///< The command that it answers.
    Verdict verdict;
    std::optional<Timestamps> timestamps;
};

/// Parses an answer without its end marker. Throws a `tools::Error` that says why a client would
/// refuse it.
Answer parseAnswer(const std::string& text);

} // namespace azubsim
