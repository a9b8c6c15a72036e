#pragma once

#include <string>

namespace azubsim {

/// The faults, and the commands of the console, as lines of text: what is written, what it does.
std::string faultTable();
std::string commandTable();

} // namespace azubsim
