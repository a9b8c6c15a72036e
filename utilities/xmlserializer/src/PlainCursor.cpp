#include "utilities/xmlserializer/PlainCursor.h"

#include <algorithm>

namespace velta::utilities::xmlserializer::detail {

bool isPlain(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) {
        return c >= ' ' && c <= '~' && c != '&' && c != '<' && c != '>' && c != '"' && c != '\'';
    });
}

bool PlainCursor::readText(std::string_view& text) {
    text = _rest.substr(0, _rest.find('<'));
    if (!isPlain(text) || text.find_first_not_of(' ') == std::string_view::npos) {
        return false;
    }
    _rest.remove_prefix(text.size());
    return true;
}

} // namespace velta::utilities::xmlserializer::detail
