#pragma once

#include <stdexcept>
#include <string>

namespace tools {

// The exit statuses that every tool has. A tool may add others.
inline constexpr int exitFailure = 1;
inline constexpr int exitUsage = 2;

/// The one way in which a tool reports that it cannot go on. `what` is for the user: one line
/// without the tool's name. `runTool` prints it and ends with the status.
class Error : public std::runtime_error {
public:
    explicit Error(const std::string& text, int exitStatus = exitFailure)
        : std::runtime_error(text), _exitStatus(exitStatus) {}

    int exitStatus() const { return _exitStatus; }

private:
    int _exitStatus;
};

/// Throws an `Error` with this text unless a condition holds.
inline void require(bool holds, const std::string& text) {
    if (!holds) {
        throw Error(text);
    }
}

} // namespace tools
