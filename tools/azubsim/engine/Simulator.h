#pragma once

#include "tools/azubsim/engine/AudioEngine.h"
#include "tools/azubsim/engine/FaultPlan.h"
#include "tools/azubsim/protocol/Exchange.h"

namespace azubsim {

/// Answers `exchange.request` as the engine would, or with a fault: sets the reply, and the fault
/// if there is one. A bad request or an unknown command closes the connection.
void simulate(AudioEngine& engine, FaultPlan& faults, Exchange& exchange);

} // namespace azubsim
