#pragma once

#include <tinyxml.h>

#include <string>
#include <string_view>
#include <utility>

#include "utilities/xmlserializer/PlainReader.h"
#include "utilities/xmlserializer/ResultTrait.h"

namespace velta::utilities::xmlserializer::detail {

/// Returns a document on one line, without white space between elements: the declaration, and the
/// root element with its version and `command` in it.
std::string printDocument(const std::string& rootTag, const std::string& version,
                          const TiXmlElement& command);

/// Parses `text` into `document` and finds its command element, which `document` owns. On failure
/// returns `ConversionFailed`, and `command` is null.
Result parseDocument(const std::string& text, const std::string& rootTag,
                     const std::string& version, TiXmlDocument& document,
                     const TiXmlElement*& command);

/// Both move past the text before or after the command in a document in plain form. They return
/// false if another text comes next; the position may have moved.
bool skipFrameStart(PlainCursor& document, const std::string& rootTag, const std::string& version);
bool skipFrameEnd(PlainCursor& document, const std::string& rootTag);

/// Reads a whole document in plain form. Returns false if it is not; then `answer` is unchanged.
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
