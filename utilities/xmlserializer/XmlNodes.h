#pragma once

#include <tinyxml.h>

#include "utilities/xmlserializer/ResultTrait.h"

namespace velta::utilities::xmlserializer::detail {

/// Returns `WrongXmlNode` if the element is not named `tag`.
Result checkName(const TiXmlNode& element, const char* tag);

/// Finds the first child element named `tag`. On failure `child` is null.
Result findElement(const TiXmlNode& parent, const char* tag, const TiXmlNode*& child);

/// Finds the first text child. On failure `child` is null.
Result findText(const TiXmlNode& parent, const TiXmlNode*& child);

/// Appends the name of the element being read to the message of `outcome`, a success or a failure.
Result addReadingContext(Result outcome, const char* tag);

/// Appends the name of the element being written to the message of a failure.
Result addWritingContext(Result failure, const char* tag);

} // namespace velta::utilities::xmlserializer::detail
