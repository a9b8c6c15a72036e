#pragma once

#include <iosfwd>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "tools/azubsim/protocol/Exchange.h"

namespace azubsim {

/// Prints exchanges in the Trace Event Format, for viewers such as ui.perfetto.dev and
/// chrome://tracing: a track with one slice per exchange for each client, a mark for each fault,
/// and curves of latency, jitter depth and margin.
///
/// Times are in microseconds since 1970. The trace is a JSON array with one event per line.
class Trace {
public:
    explicit Trace(std::ostream& stream);

    void add(const Exchange& exchange);

    /// Prints the end of the array.
    void end();

private:
    void addEvent(const char* phase, const std::string& name, int client, tools::Time time,
                  const nlohmann::ordered_json& more);

    std::ostream& _stream;
    std::map<int, tools::Time> _ends; ///< The end of each client's last slice.
};

} // namespace azubsim
