#pragma once

#include <pugixml.hpp>
#include <string>

#include "tools/azubsim/protocol/Timestamps.h"

namespace azubsim {

/// The answers of the engine, as it prints them, without the end marker.
std::string timestampsAnswer(const Timestamps& timestamps, const Verdict& verdict);
std::string delayAnswer(const Verdict& verdict);

/// Prints a document as the engine does: on one line, and with its own declaration.
std::string print(const pugi::xml_document& document);

/// Parses a document and checks its root. Returns the element of the command, with `command` set to
/// its name without `ending`. Throws a `tools::Error` that says what is wrong.
pugi::xml_node parseDocument(const std::string& text, const std::string& ending,
                             pugi::xml_document& document, std::string& command);

} // namespace azubsim
