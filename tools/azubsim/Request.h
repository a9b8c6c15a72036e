#pragma once

#include <cstdint>
#include <string>

namespace azubsim {

struct Request {
    enum class Command { GetAudioTs, SetAudioDelay };

    Command command = Command::GetAudioTs;
    std::uint64_t delayMs = 0; ///< Of `SetAudioDelay`.
};

/// Reads a request without its end marker. False, with the reason in `error`, if it is none.
bool parseRequest(const std::string& text, Request& request, std::string& error);

} // namespace azubsim
