#include "utilities/xmlserializer/PlainText.h"

#include <algorithm>

namespace velta::utilities::xmlserializer::detail {

bool PlainText::skip(std::string_view expected) {
    if (_rest.substr(0, expected.size()) != expected) {
        return false;
    }
    _rest.remove_prefix(expected.size());
    return true;
}

bool PlainText::skipEmpty(std::string_view tag) {
    const std::string_view before = _rest;
    if (skip("<") && skip(tag) && skip(" />")) {
        return true;
    }
    _rest = before;
    return false;
}

bool PlainText::readText(std::string_view& text) {
    const auto isPlain = [](char c) { return c >= ' ' && c <= '~' && c != '&'; };
    text = _rest.substr(0, _rest.find('<'));
    if (!std::all_of(text.begin(), text.end(), isPlain) ||
        text.find_first_not_of(' ') == std::string_view::npos) {
        return false;
    }
    _rest.remove_prefix(text.size());
    return true;
}

} // namespace velta::utilities::xmlserializer::detail
