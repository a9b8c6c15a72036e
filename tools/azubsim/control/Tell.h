#pragma once

#include <string>

namespace azubsim {

/// Sends a command to the azubsim that listens at this engine's socket, and prints its answer.
/// Waits for up to two seconds until it listens. Throws a `tools::Error` if it does not, if it does
/// not answer, or if it refuses the command.
void tell(const std::string& socket, const std::string& command);

} // namespace azubsim
