#pragma once

#include <functional>
#include <string>

namespace tools {

/// What `main` does: prepares the standard descriptors, the locale and SIGPIPE, calls `body`, and
/// checks that standard output was written. An `Error` is printed as "NAME: text". Returns the exit
/// status.
int runTool(const char* name, const std::function<int()>& body);

/// Prints one line to standard error, with the tool's name before it and as `printable` makes it.
void complain(const std::string& text);

/// Throws an `Error` if something that was written to `std::cout` is lost, for example because the
/// reader has gone. Call it where a tool that goes on for long can stop.
void checkOutput();

} // namespace tools
