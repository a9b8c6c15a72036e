#pragma once

#include <string_view>

namespace velta::utilities::xmlserializer::detail {

/// A position in a document in plain form. Every function returns whether the document goes on as
/// asked, and is behind that part then.
class PlainCursor {
public:
    explicit PlainCursor(std::string_view document) : _rest(document) {}

    bool skip(std::string_view expected) {
        if (_rest.substr(0, expected.size()) != expected) {
            return false;
        }
        _rest.remove_prefix(expected.size());
        return true;
    }
    bool skipStart(std::string_view tag) { return skip("<", tag, ">"); }
    bool skipEnd(std::string_view tag) { return skip("</", tag, ">"); }

    /// An element without content.
    bool skipEmpty(std::string_view tag) { return skip("<", tag, " />"); }

    /// Plain text up to the next tag, and not all blank, which TinyXML drops. `text` lives as long
    /// as the document.
    bool readText(std::string_view& text);

    bool isAtEnd() const { return _rest.empty(); }

private:
    // All of it or nothing.
    bool skip(std::string_view before, std::string_view tag, std::string_view after) {
        PlainCursor rest(*this);
        if (!rest.skip(before) || !rest.skip(tag) || !rest.skip(after)) {
            return false;
        }
        *this = rest;
        return true;
    }

    std::string_view _rest;
};

} // namespace velta::utilities::xmlserializer::detail
