#pragma once

#include <cstdio>
#include <string>

namespace tools {

/// What `printf` would print; at most 255 characters.
template <typename... Values>
std::string printed(const char* format, Values... values) {
    char text[256];
    std::snprintf(text, sizeof(text), format, values...);
    return text;
}

/// Breaks text between words so that no line is longer than `width`. Longer words are not broken.
std::string wrapped(const std::string& text, std::size_t width);

/// Breaks a line for a terminal with this many columns, between words if possible, and indents what
/// follows. 0 columns mean that there is no terminal. The line must be as `printable` makes it.
std::string broken(const std::string& line, std::size_t columns);

/// The columns of the terminal behind a descriptor; 0 if it is none.
std::size_t terminalColumns(int descriptor);

} // namespace tools
