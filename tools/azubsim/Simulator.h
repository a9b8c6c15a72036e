#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "tools/azubsim/AudioEngine.h"
#include "tools/azubsim/FaultPlan.h"
#include "tools/azubsim/Journal.h"
#include "tools/azubsim/Reply.h"
#include "tools/azubsim/Request.h"

namespace azubsim {

/// Answers requests as the engine would, from a recording, or with a fault.
class Simulator {
public:
    AudioEngine engine;
    FaultPlan faults;
    std::size_t floodBytes = 0;
    Recorder recorder;
    std::optional<Replay> replay; ///< If set, it answers every request.
    bool isVerbose = false;       ///< Print each message to standard error.

    /// `request` has no end marker.
    Reply answer(int client, const std::string& request);

private:
    Reply answerAsEngine(const std::string& request, const Fault* fault);
    Document carryOut(const Request& request, const Fault* fault);
};

} // namespace azubsim
