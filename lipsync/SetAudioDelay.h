#pragma once

#include "cmdfrmwrk/Command.h"

namespace velta::zub::lipsync {

/// Asks the engine to delay the audio.
struct SetAudioDelay {
    struct Request {
        unsigned long delayMs = 0; ///< The margin, in ms.
    };

    struct Answer : cmdfrmwrk::Command::Answer {};
};

} // namespace velta::zub::lipsync
