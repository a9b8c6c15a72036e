#pragma once

#include <cstdio>
#include <fstream>
#include <memory>
#include <optional>
#include <string>

#include "tools/azubsim/protocol/Exchange.h"

namespace azubsim {

// The format of recordings. Each line is a JSON object. The first one is the header:
//
//     {"format":"azubsim recording","version":3,"made":"2024-05-01T12:00:00.000000Z"}
//
// Every other line is an exchange:
//
//     {"time":1714564800.25,"utc":"2024-05-01T12:00:00.250000Z","client":1,"request":"...",
//      "complete":true,"answer":[{"after_ms":0.11,"bytes":"..."}],"closes":false,"fault":"",
//      "said":"","left_out":0,"engine_ms":0.1}
//
// `time` is in seconds since 1970. A request is not complete if its client left in the middle of
// it. `after_ms` is the time since the request or the previous bytes. `closes` says whether the
// connection is then closed. With a fault, `said` is the engine's own answer. `left_out` is the
// number of bytes of an answer that were too many to keep.
// Messages need not be UTF-8, so each byte of `request`, `bytes`, `said` and `fault` is written as
// the character with the same number, U+0000 to U+00FF. ASCII stays readable.

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
