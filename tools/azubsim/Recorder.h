#pragma once

#include <chrono>
#include <string>

#include "tools/azubsim/Exchange.h"
#include "tools/azubsim/OutputFile.h"

namespace azubsim {

/// Writes exchanges to a file that `Replay` reads.
///
/// Each line of the file is a JSON object. The first one is the header:
///
///     {"format":"azubsim recording","version":2,"made":"2024-05-01T12:00:00.000000Z"}
///
/// Every other line is an exchange:
///
///     {"time":1714564800.25,"utc":"2024-05-01T12:00:00.250000Z","client":1,"request":"...",
///      "complete":true,"answer":[{"after_ms":0.11,"bytes":"..."}],"end":"open","fault":"","engine_ms":0.1}
///
/// `time` is in seconds since 1970. A request is not complete if its client left in the middle of
/// it. `after_ms` is the time since the request or the previous bytes. `end` says what then
/// happens to the connection: "open", "close" or "reset". Messages need not be UTF-8, so each byte
/// of `request`, `bytes` and `fault` is written as the character with the same number, U+0000 to
/// U+00FF. ASCII stays readable.
class Recorder {
public:
    static constexpr const char* format = "azubsim recording";
    static constexpr int version = 2;

    /// Longer waits are recorded as this long.
    static constexpr std::chrono::hours maxWait{1};

    /// The name of an end in the file.
    static const char* endName(Reply::End end);

    /// Refuses to overwrite an existing file unless `force` is set. Returns false with the reason
    /// in `error`.
    bool open(const std::string& path, bool force, std::string& error);

    /// Returns false once, when the recording can no longer be written. After that, and before
    /// `open`, it does nothing and returns true.
    bool add(const Exchange& exchange);

private:
    OutputFile _file;
};

} // namespace azubsim
