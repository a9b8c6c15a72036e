#include "tools/common/Printable.h"

#include <algorithm>
#include <cwchar>
#include <cwctype>
#include <iterator>

namespace tools {

namespace {

// Characters that show nothing, or that change how others are shown. The locale calls them
// printable.
bool isFormat(wchar_t character) {
    constexpr wchar_t ranges[][2] = {{0xAD, 0xAD},     {0x600, 0x605},     {0x61C, 0x61C},
                                     {0x180E, 0x180E}, {0x200B, 0x200F},   {0x2028, 0x202E},
                                     {0x2060, 0x206F}, {0xFE00, 0xFE0F},   {0xFEFF, 0xFEFF},
                                     {0xFFF9, 0xFFFC}, {0x1D173, 0x1D17A}, {0xE0000, 0xE0FFF}};
    return std::any_of(std::begin(ranges), std::end(ranges), [=](const wchar_t(&range)[2]) {
        return character >= range[0] && character <= range[1];
    });
}

// The length of the character at the start of these bytes if it may stay, else 0.
std::size_t printableLength(const char* bytes, std::size_t size) {
    std::mbstate_t state{};
    wchar_t character = 0;
    const std::size_t length = std::mbrtowc(&character, bytes, size, &state);
    // For a zero byte the length is 0. For an invalid sequence it is huge.
    const bool mayStay = length <= size && std::iswprint(static_cast<wint_t>(character)) != 0 &&
                         !isFormat(character);
    return mayStay ? length : 0;
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
