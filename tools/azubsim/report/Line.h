#pragma once

#include <string>

#include "tools/azubsim/protocol/Exchange.h"

namespace azubsim {

/// One line for people, without a line feed: time of day, client, what was asked, the verdict, the
/// figures, how long the engine took, and the fault if there is one with what the engine had said.
std::string exchangeLine(const Exchange& exchange);

} // namespace azubsim
