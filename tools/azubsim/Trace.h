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
/// Times are in microseconds since 1970. The file is a JSON array with one event per line. The
/// comma is at the start of a line, so a killed program leaves out only the closing bracket, which
/// the format allows.
class Trace {
public:
    Trace() = default;
    ~Trace();

    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;

    /// Refuses to overwrite an existing file unless `force` is set. Returns false with the reason
    /// in `error`.
    bool open(const std::string& path, bool force, std::string& error);

    /// Returns false, once, if the trace cannot be written any more; then it does nothing, and
    /// neither does it before `open`.
    bool add(const Exchange& exchange);

private:
    OutputFile _file;
    std::map<int, std::chrono::microseconds> _ends; ///< The end of each client's last slice.
};

} // namespace azubsim
