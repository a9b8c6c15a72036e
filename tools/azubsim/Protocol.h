#pragma once

#include <cstdint>
#include <string>

#include "tools/azubsim/AudioEngine.h"

namespace azubsim {

/// Closes every message.
inline constexpr const char* endMarker = "\n\n";

struct Request {
    enum class Command { GetAudioTs, SetAudioDelay };

    Command command = Command::GetAudioTs;
    std::uint64_t delayMs = 0; ///< Of `SetAudioDelay`.
};

/// Reads a request without its end marker. False, with the reason in `error`, if it is none.
bool parseRequest(const std::string& text, Request& request, std::string& error);

/// The answers, with their end marker.
std::string timestampsAnswer(const Timestamps& timestamps, const Verdict& verdict);
std::string delayAnswer(const Verdict& verdict);

} // namespace azubsim
