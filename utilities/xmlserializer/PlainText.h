#pragma once

#include <algorithm>
#include <string_view>

namespace velta::utilities::xmlserializer::detail {

/// Whether text stands for itself in a document: printable ASCII without the characters that
/// TinyXML escapes.
inline bool isPlain(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) {
        return c >= ' ' && c <= '~' && c != '&' && c != '<' && c != '>' && c != '"' && c != '\'';
    });
}

} // namespace velta::utilities::xmlserializer::detail
