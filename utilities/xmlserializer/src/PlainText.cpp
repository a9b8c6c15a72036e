#include "utilities/xmlserializer/PlainText.h"

#include <algorithm>
#include <string>

namespace velta::utilities::xmlserializer::detail {

bool isPlain(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) {
        return c >= ' ' && c <= '~' && c != '&' && c != '<' && c != '>' && c != '"' && c != '\'';
    });
}

bool PlainText::skip(std::string_view expected) {
    if (_rest.size() < expected.size() ||
        std::char_traits<char>::compare(_rest.data(), expected.data(), expected.size()) != 0) {
        return false;
    }
    _rest.remove_prefix(expected.size());
    return true;
}

// All of it or nothing.
bool PlainText::skip(std::string_view before, std::string_view tag, std::string_view after) {
    PlainText rest(*this);
    if (!rest.skip(before) || !rest.skip(tag) || !rest.skip(after)) {
        return false;
    }
    *this = rest;
    return true;
}

bool PlainText::readText(std::string_view& text) {
    text = _rest.substr(0, _rest.find('<'));
    if (!isPlain(text) || text.find_first_not_of(' ') == std::string_view::npos) {
        return false;
    }
    _rest.remove_prefix(text.size());
    return true;
}

} // namespace velta::utilities::xmlserializer::detail
