#pragma once

#include <cstddef>
#include <string>

namespace velta::utilities::xmlserializer::detail {

/// How large the structure of a document may be before it is not given to TinyXML.
struct DocumentLimits {
    std::size_t nesting;    ///< Elements inside each other, the root included.
    std::size_t attributes; ///< Attributes of one element.
};

/// The limits of what the engine sends; its own documents nest four elements and have one
/// attribute.
///
/// TinyXML parses and destroys nested elements by recursion: some 5,000 levels exhaust a stack of
/// 1 MB, 256 take about 50 KB of it. It compares every attribute of an element with all those
/// before: 16,000 take most of a second, 1,024 some milliseconds.
inline constexpr DocumentLimits answerLimits{256, 1024};

/// How many zeros must stand behind a text for TinyXML, besides the terminator. Where a text ends
/// in the middle of a UTF-8 character, TinyXML steps over the terminator by what is missing.
inline constexpr std::size_t textPadding = 3;

/// Whether the elements that TinyXML would read from `text`, up to where it stops, keep within
/// `limits`. `text` must be padded. Takes time in proportion to the text, and no recursion.
///
/// An element that names an attribute twice makes TinyXML stop; here reading goes on behind it.
bool isWithin(const DocumentLimits& limits, const std::string& text);

} // namespace velta::utilities::xmlserializer::detail
