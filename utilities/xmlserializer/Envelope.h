#pragma once

#include <tinyxml.h>

#include <string>

#include "utilities/xmlserializer/ResultTrait.h"

namespace velta::utilities::xmlserializer::detail {

/// The text of the document that holds `command`: the declaration, the root element with its
/// version, and in it the command, on one line without white space between elements.
std::string printDocument(const std::string& rootTag, const std::string& version,
                          const TiXmlElement& command);

/// Parses `text` into `document` and finds its command element, which the document owns. On
/// failure the code is `ConversionFailed` and `command` is null.
Result parseDocument(const std::string& text, const std::string& rootTag,
                     const std::string& version, TiXmlDocument& document,
                     const TiXmlElement*& command);

} // namespace velta::utilities::xmlserializer::detail
