#include "tools/common/Text.h"

#include <sys/ioctl.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <cwchar>
#include <cwctype>
#include <fstream>
#include <iterator>
#include <sstream>

#include "tools/common/Error.h"

namespace tools {

std::string printable(const std::string& text) {
    std::string result;
    for (std::size_t i = 0; i < text.size();) {
        std::mbstate_t state{};
        wchar_t character = 0;
        // For a zero byte the length is 0. For an invalid sequence it is huge.
        const std::size_t length =
            std::mbrtowc(&character, text.data() + i, text.size() - i, &state);
        // ASCII, and the letters of all languages: other characters may be invisible, or change
        // how others are shown.
        if (length <= text.size() && (std::isprint(static_cast<unsigned char>(text[i])) != 0 ||
                                      std::iswalpha(static_cast<wint_t>(character)) != 0)) {
            result.append(text, i, length);
            i += length;
        } else {
            const auto byte = static_cast<unsigned char>(text[i++]);
            result += byte == '\n' ? "\\n" : printed("\\x%02x", byte);
        }
    }
    return result;
}

std::string broken(const std::string& line, std::size_t columns) {
    const std::string indent(4, ' ');
    if (columns <= 2 * indent.size()) {
        return line;
    }
    std::string result;
    std::size_t start = 0; // Of the current line.
    std::size_t blank = 0; // The last one.
    std::size_t used = 0;
    for (std::size_t i = 0; i < line.size(); ++i) {
        // In UTF-8, a byte that continues a character begins with the bits 10.
        used += (line[i] & 0xC0) == 0x80 ? 0 : 1;
        blank = line[i] == ' ' ? i : blank;
        if (used > columns) {
            const std::size_t end = blank > start ? blank : i;
            result.append(line, start, end - start).append('\n' + indent);
            start = std::min(line.find_first_not_of(' ', end), line.size());
            i = start - 1;
            used = indent.size();
        }
    }
    return result + line.substr(start);
}

std::size_t terminalColumns(int descriptor) {
    winsize size{};
    return ioctl(descriptor, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

void readLines(const std::string& file,
               const std::function<void(const std::string& line)>& handle) {
    errno = 0;
    std::ifstream lines(file);
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        try {
            handle(line);
        } catch (const Error& e) {
            throw Error(file + ':' + std::to_string(number) + ": " + e.what());
        }
    }
    // A folder can be opened, but not read.
    if (!lines.is_open() || lines.bad()) {
        throw Error(file + ": " + std::strerror(errno));
    }
}

Words::Words(const std::string& line) {
    std::istringstream stream(line);
    stream >> first >> std::ws;
    rest.assign(std::istreambuf_iterator<char>(stream), {});
    rest.erase(rest.find_last_not_of(" \t\r") + 1);
}

} // namespace tools
