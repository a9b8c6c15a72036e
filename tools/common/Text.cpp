#include "tools/common/Text.h"

#include <sys/ioctl.h>

#include <algorithm>
#include <cwchar>
#include <sstream>

namespace tools {

namespace {

// The bytes of a line of text that fit into this many columns.
std::size_t bytesThatFit(const std::string& text, std::size_t columns) {
    std::mbstate_t state{};
    std::size_t size = 0;
    while (size < text.size()) {
        wchar_t character = 0;
        const std::size_t length =
            std::mbrtowc(&character, text.data() + size, text.size() - size, &state);
        const std::size_t width = static_cast<std::size_t>(std::max(wcwidth(character), 0));
        if (length == 0 || length > text.size() || width > columns) {
            break;
        }
        columns -= width;
        size += length;
    }
    return size;
}

} // namespace

std::string wrapped(const std::string& text, std::size_t width) {
    std::istringstream words(text);
    std::string lines;
    std::size_t used = 0;
    for (std::string word; words >> word; used += word.size()) {
        if (used + 1 + word.size() > width) {
            lines += '\n';
            used = 0;
        } else if (used > 0) {
            lines += ' ';
            ++used;
        }
        lines += word;
    }
    return lines;
}

std::string broken(const std::string& line, std::size_t columns) {
    constexpr std::size_t indent = 4;
    if (columns <= 2 * indent) {
        return line;
    }
    std::string result;
    std::string rest = line;
    for (std::size_t size; (size = bytesThatFit(rest, columns)) < rest.size() && size > 0;) {
        const std::size_t blank = rest.rfind(' ', size);
        if (blank != std::string::npos && blank > indent) {
            size = blank;
        }
        result += rest.substr(0, size) + '\n';
        rest.erase(0, std::min(rest.find_first_not_of(' ', size), rest.size()));
        rest.insert(0, indent, ' ');
    }
    return result + rest;
}

std::size_t terminalColumns(int descriptor) {
    winsize size{};
    return ioctl(descriptor, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

} // namespace tools
