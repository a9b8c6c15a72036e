#pragma once

#include <cstdio>
#include <fstream>
#include <memory>
#include <optional>
#include <string>

#include "tools/azubsim/protocol/Exchange.h"

namespace azubsim {

/// Writes exchanges to a file that grows while the program runs. A killed program leaves everything
/// written so far.
class Recorder {
public:
    /// Creates the file. Throws a `tools::Error` if it exists or cannot be created.
    explicit Recorder(const std::string& path);

    /// Throws a `tools::Error` if the recording can no longer be written. After that it does
    /// nothing.
    void add(const Exchange& exchange);

private:
    void write(const std::string& line);

    const std::string _path;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> _file;
};

/// Reads a recording, exchange by exchange.
class Recording {
public:
    /// Opens a file; "-" is standard input. Throws a `tools::Error` if that is not possible.
    explicit Recording(const std::string& path);

    /// The next exchange, or nothing at the end of what is there now: a file may grow. Throws a
    /// `tools::Error` if the file is not a recording.
    std::optional<Exchange> next();

    /// Whether the file ends in the middle of a line, as a killed recorder leaves it.
    bool isCut() const { return !_line.empty(); }

private:
    bool readLine();

    const std::string _path;
    std::ifstream _file;
    std::string _line; ///< As much of it as has been read.
    unsigned long _lines = 0;
};

} // namespace azubsim
