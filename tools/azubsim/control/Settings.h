#pragma once

#include "tools/azubsim/control/Commands.h"
#include "tools/azubsim/engine/AudioEngine.h"
#include "tools/azubsim/engine/FaultPlan.h"

namespace azubsim {

/// Adds the commands that change a simulated engine, and its lines of "status".
void addEngineCommands(Commands& commands, AudioEngine& engine);

/// The same for faults.
void addFaultCommands(Commands& commands, FaultPlan& faults);

} // namespace azubsim
