#pragma once

#include <string>

namespace azubsim {

/// What a client of the control socket gets before the answer to its command.
inline constexpr const char* accepted = "ok\n";
inline constexpr const char* refused = "refused\n";

/// The control socket that belongs to an engine's socket. Its clients send a command and an empty
/// line, and get the answer and the end of the connection.
inline std::string controlPath(const std::string& socket) {
    return socket + ".control";
}

/// Sends a command to the azubsim that listens at this engine's socket, and prints its answer.
/// Waits for up to two seconds until it listens. Throws a `tools::Error` if it does not, if it does
/// not answer, or if it refuses the command.
void tell(const std::string& socket, const std::string& command);

} // namespace azubsim
