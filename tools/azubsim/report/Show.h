#pragma once

#include <string>

namespace azubsim {

/// Prints a line for each exchange of a recording. If `follows`, also for those that are still
/// added, until the process is killed. Throws a `tools::Error`.
void showRecording(const std::string& path, bool follows);

/// Prints a recording as a trace. Throws a `tools::Error`.
void traceRecording(const std::string& path);

} // namespace azubsim
