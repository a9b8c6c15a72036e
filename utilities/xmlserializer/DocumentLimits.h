#pragma once

#include <cstddef>
#include <string>

namespace velta::utilities::xmlserializer::detail {

/// The largest document structure that is passed to TinyXML.
struct DocumentLimits {
    std::size_t nesting;    ///< Levels of elements, including the root.
    std::size_t attributes; ///< Attributes of one element.
};

/// The limits for answers. A real answer has four levels of elements and one attribute.
///
/// TinyXML parses and destroys nested elements recursively: about 5,000 levels overflow a stack of
/// 1 MB, while 256 use about 50 KB. It compares every attribute of an element with all earlier
/// ones: 16,000 take most of a second, 1,024 a few milliseconds.
inline constexpr DocumentLimits answerLimits{256, 1024};

/// The number of zero bytes that TinyXML needs after a text, besides the terminator. If the text
/// ends inside a UTF-8 character, TinyXML skips as many bytes as the whole character would have.
inline constexpr std::size_t textPadding = 3;

/// Whether the elements that TinyXML would read from `text`, up to where it stops, are within
/// `limits`. `text` must be padded. Takes linear time and does not recurse.
///
/// TinyXML stops at an element that repeats an attribute; this function continues after it.
bool isWithin(const DocumentLimits& limits, const std::string& text);

} // namespace velta::utilities::xmlserializer::detail
