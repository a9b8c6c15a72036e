#pragma once

#include <string_view>

namespace velta::utilities::xmlserializer::detail {

/// What has not been read yet of a document in plain form. Every function returns whether the
/// document goes on as asked, and has read that part then.
class PlainText {
public:
    explicit PlainText(std::string_view document) : _rest(document) {}

    bool skip(std::string_view expected);
    bool skipStart(std::string_view tag) { return skip("<") && skip(tag) && skip(">"); }
    bool skipEnd(std::string_view tag) { return skip("</") && skip(tag) && skip(">"); }

    /// An element without content.
    bool skipEmpty(std::string_view tag);

    /// Text up to the next tag that means itself to TinyXML too: printable ASCII without entities,
    /// and not all blank. `text` lives as long as the document.
    bool readText(std::string_view& text);

    bool isAtEnd() const { return _rest.empty(); }

private:
    std::string_view _rest;
};

} // namespace velta::utilities::xmlserializer::detail
