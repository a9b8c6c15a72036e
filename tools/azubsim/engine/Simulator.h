#pragma once

#include <optional>

#include "tools/azubsim/engine/AudioEngine.h"
#include "tools/azubsim/engine/FaultPlan.h"
#include "tools/azubsim/protocol/Exchange.h"

namespace azubsim {

/// Answers requests as the engine would, or with a fault.
class Simulator {
public:
    Simulator(AudioEngine& engine, FaultPlan& faults) : _engine(engine), _faults(faults) {}

    /// Answers `exchange.request`: sets the reply, and the fault if there is one. A bad request
    /// or an unknown command closes the connection.
    void answer(Exchange& exchange);

private:
    /// Nothing if the request is bad or its command unknown.
    std::optional<Answer> carryOut(const Request& request);

    AudioEngine& _engine;
    FaultPlan& _faults;
};

} // namespace azubsim
