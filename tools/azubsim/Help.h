#pragma once

#include <string>

namespace azubsim {

/// One line for each fault: its syntax and its effect.
std::string faultTable();

} // namespace azubsim
