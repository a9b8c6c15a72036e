#pragma once

#include <string_view>

namespace velta::utilities::xmlserializer::detail {

/// A position in a document in plain form (see `PlainReader`). Each skip and read function returns
/// whether the expected text comes next and, if so, moves past it.
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

    /// Skips an element without content.
    bool skipEmpty(std::string_view tag) { return skip("<", tag, " />"); }

    /// Reads plain text up to the next tag. Fails for text of spaces only, because TinyXML drops
    /// it. `text` is valid as long as the document.
    bool readText(std::string_view& text);

    bool isAtEnd() const { return _rest.empty(); }

private:
    // Skips all three parts or none.
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

/// Whether a document holds this text unescaped: all of it is printable ASCII, without the
/// characters that TinyXML escapes.
bool isPlain(std::string_view text);

} // namespace velta::utilities::xmlserializer::detail
