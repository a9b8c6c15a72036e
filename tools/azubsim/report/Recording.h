#pragma once

#include <optional>
#include <string>

#include "tools/azubsim/protocol/Exchange.h"

namespace azubsim {

/// Reads a recording, exchange by exchange.
class Recording {
public:
    /// Opens a file; "-" is standard input. Throws a `tools::Error` if that is not possible.
    explicit Recording(const std::string& path);
    ~Recording();

    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;

    /// The next exchange, or nothing at the end of what is there now: a file may grow. Throws a
    /// `tools::Error` if the file is not a recording.
    std::optional<Exchange> next();

    /// Whether the file ends in the middle of a line, as a killed recorder leaves it.
    bool isCut() const { return !_unread.empty(); }

private:
    bool readLine(std::string& line);

    std::string _path;
    int _file;
    std::string _unread; ///< The start of a line.
    unsigned long _lines = 0;
};

} // namespace azubsim
