#pragma once

#include <cstdint>
#include <string>

namespace azubsim {

struct Request {
    enum class Command { GetAudioTs, SetAudioDelay };

    Command command = Command::GetAudioTs;
    std::uint64_t delayMs = 0; ///< The margin in `SetAudioDelay`.
};

/// Parses a request without its end marker. Returns false, with the reason in `error`, if
/// it is invalid.
bool parseRequest(const std::string& text, Request& request, std::string& error);

} // namespace azubsim
