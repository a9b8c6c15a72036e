#include "tools/common/Printable.h"

#include <algorithm>
#include <cwchar>
#include <cwctype>

namespace tools {

namespace {

// The length of the character at the start of these bytes if it may stay, else 0.
std::size_t printableLength(const char* bytes, std::size_t size) {
    std::mbstate_t state{};
    wchar_t character = 0;
    const std::size_t length = std::mbrtowc(&character, bytes, size, &state);
    // For a zero byte the length is 0. For an invalid sequence it is huge.
    return length <= size && std::iswprint(static_cast<wint_t>(character)) != 0 ? length : 0;
}

std::string escaped(char byte) {
    if (byte == '\n') {
        return "\\n";
    }
    constexpr char digits[] = "0123456789abcdef";
    const auto value = static_cast<unsigned char>(byte);
    return {'\\', 'x', digits[value / 16], digits[value % 16]};
}

} // namespace

std::string printable(const std::string& text) {
    std::string result;
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t length = printableLength(text.data() + position, text.size() - position);
        result += length > 0 ? text.substr(position, length) : escaped(text[position]);
        position += std::max<std::size_t>(length, 1);
    }
    return result;
}

} // namespace tools
