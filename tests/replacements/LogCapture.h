#pragma once

#include <string>
#include <vector>

namespace tests {

/// While it lives, collects what goes to the platform's log and to standard error. Without one,
/// platform records are echoed to standard error as "platform PRIORITY/TAG TEXT", which lets a
/// test see the records of a child process that dies.
class LogCapture {
public:
    LogCapture();
    ~LogCapture();

    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// The platform's records so far, as "PRIORITY/TAG TEXT".
    const std::vector<std::string>& records() const;

    /// What was written to standard error; ends the capture of it.
    std::string standardError();

private:
    bool _capturing = true;
};

} // namespace tests
