#pragma once

#include <tinyxml.h>

#include <string>
#include <string_view>
#include <utility>

#include "utilities/xmlserializer/PlainReader.h"
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

/// Move past what comes before and after the command in a document in plain form.
bool skipFrameStart(PlainCursor& document, const std::string& rootTag, const std::string& version);
bool skipFrameEnd(PlainCursor& document, const std::string& rootTag);

/// Reads a whole document in plain form. `answer` is filled completely or not at all.
template <typename Trait>
bool readPlainDocument(std::string_view text, const std::string& rootTag,
                       const std::string& version, typename Trait::Type& answer) {
    PlainCursor document(text);
    typename Trait::Type filled = answer;
    if (!skipFrameStart(document, rootTag, version) ||
        !PlainReader<Trait>::read(document, filled) || !skipFrameEnd(document, rootTag)) {
        return false;
    }
    answer = std::move(filled);
    return true;
}

} // namespace velta::utilities::xmlserializer::detail
