#include "utilities/xmlserializer/PlainCursor.h"

#include "utilities/xmlserializer/PlainText.h"

namespace velta::utilities::xmlserializer::detail {

bool PlainCursor::readText(std::string_view& text) {
    text = _rest.substr(0, _rest.find('<'));
    if (!isPlain(text) || text.find_first_not_of(' ') == std::string_view::npos) {
        return false;
    }
    _rest.remove_prefix(text.size());
    return true;
}

} // namespace velta::utilities::xmlserializer::detail
