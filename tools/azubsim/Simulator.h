#pragma once

#include <optional>
#include <string>

#include "tools/azubsim/AudioEngine.h"
#include "tools/azubsim/FaultPlan.h"
#include "tools/azubsim/Replay.h"
#include "tools/azubsim/Reports.h"
#include "tools/azubsim/Request.h"

namespace azubsim {

/// Answers requests as the engine would, from a recording, or with a fault.
class Simulator {
public:
    Simulator(AudioEngine& engine, FaultPlan& faults, Reports& reports)
        : _engine(engine), _faults(faults), _reports(reports) {}

    /// From now on, a recording answers every request.
    void replay(Replay recording) { _replay = std::move(recording); }

    /// `request` has no end marker.
    Reply answer(int client, const std::string& request);

private:
    Reply answerFromRecording();
    Reply answerAsEngine(const std::string& request, const std::optional<Fault>& fault);
    std::string carryOut(const Request& request);

    AudioEngine& _engine;
    FaultPlan& _faults;
    Reports& _reports;
    std::optional<Replay> _replay;
};

} // namespace azubsim
