#pragma once

#include <string>

#include "tools/azubsim/protocol/Exchange.h"

namespace azubsim {

/// Writes exchanges to a file that grows while the program runs. A killed program leaves everything
/// written so far.
class Recorder {
public:
    /// Refuses to overwrite an existing regular file unless `overwrites` is set. Throws a
    /// `tools::Error` if the file cannot be used. Never waits for the reader of a pipe.
    Recorder(const std::string& path, bool overwrites);
    ~Recorder();

    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    /// Throws a `tools::Error` if the recording can no longer be written. After that it does
    /// nothing.
    void add(const Exchange& exchange);

    /// Waits for at most a second until the reader of a pipe has taken everything. Throws a
    /// `tools::Error` if the recording is not complete.
    void finish();

private:
    void write();
    [[noreturn]] void fail(const std::string& reason);

    std::string _path;
    int _file = -1;
    std::string _unwritten; ///< What a pipe has not taken yet.
};

} // namespace azubsim
