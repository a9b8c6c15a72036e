#pragma once

#include <chrono>
#include <map>
#include <string>

#include "tools/azubsim/Exchange.h"
#include "tools/azubsim/OutputFile.h"
#include "tools/azubsim/Summary.h"

namespace azubsim {

/// Writes exchanges to a file in the Trace Event Format, for viewers such as ui.perfetto.dev and
/// chrome://tracing: a track with one slice per exchange for each client, a mark for each fault,
/// and curves of latency, jitter depth and margin.
///
/// Times are in microseconds since 1970. The file is a JSON array with one event per line. Commas
/// are at the start of lines, so if the program is killed, only the closing bracket is missing,
/// which the format allows.
class Trace {
public:
    Trace() = default;
    ~Trace();

    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;

    /// Refuses to overwrite an existing file unless `force` is set. Returns false with the reason
    /// in `error`.
    bool open(const std::string& path, bool force, std::string& error);

    /// Returns false once, when the trace can no longer be written. After that, and before `open`,
    /// it does nothing and returns true.
    bool add(const Exchange& exchange);

private:
    OutputFile _file;
    std::map<int, std::chrono::microseconds> _ends; ///< The end of each client's last slice.
};

} // namespace azubsim
