#pragma once

#include "cmdfrmwrk/Command.h"
#include "lipsync/common/LipSyncNtpTimestamps.h"

namespace velta::zub::lipsync {

/// Gets the engine's timestamps.
struct GetAudioTs {
    struct Request {};

    struct Answer : cmdfrmwrk::Command::Answer {
        common::LipSyncNtpTimestamps timestamps;
    };
};

} // namespace velta::zub::lipsync
