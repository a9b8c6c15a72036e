#pragma once

#include <pugixml.hpp>
#include <string>

#include "tools/azubsim/AudioEngine.h"

namespace azubsim {

/// The answers of the engine, as it prints them, without the end marker.
std::string timestampsAnswer(const Timestamps& timestamps, const Verdict& verdict);
std::string delayAnswer(const Verdict& verdict);

/// Prints a document as the engine does: on one line, and with its own declaration.
std::string print(const pugi::xml_document& document);

} // namespace azubsim
