#pragma once

#include <string>

namespace azubsim {

/// One line for each fault or console command: its syntax and its effect.
std::string faultTable();
std::string commandTable();

} // namespace azubsim
