#pragma once

#include <optional>
#include <string>

#include "tools/azubsim/AudioEngine.h"

namespace azubsim {

/// What an answer says. An answer to GetAudioTs has timestamps, even if it reports an error; one to
/// SetAudioDelay has none.
struct Answer {
    int code = 0;
    std::string message;
    std::optional<Timestamps> timestamps;
};

/// Parses an answer without its end marker. Returns false if a client would refuse it.
bool parseAnswer(const std::string& text, Answer& answer);

} // namespace azubsim
