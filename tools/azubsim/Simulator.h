#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "tools/azubsim/AudioEngine.h"
#include "tools/azubsim/FaultPlan.h"
#include "tools/azubsim/Journal.h"
#include "tools/azubsim/Reply.h"

namespace azubsim {

/// Answers requests: as the engine would, as a recording did, or as a fault has it.
class Simulator {
public:
    AudioEngine engine;
    FaultPlan faults;
    std::size_t floodBytes = 0;
    Recorder recorder;
    std::optional<Replay> replay; ///< If there is one, it answers everything.
    bool isVerbose = false;       ///< Whether messages are shown on standard error.

    /// `request` goes without its end marker.
    Reply answer(int client, const std::string& request);

private:
    Reply answerAsEngine(const std::string& request, const Fault* fault);
};

} // namespace azubsim
