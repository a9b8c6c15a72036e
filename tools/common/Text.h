#pragma once

#include <cstdio>
#include <functional>
#include <string>

namespace tools {

/// What `printf` would print; at most 255 characters.
template <typename... Values>
std::string printed(const char* format, Values... values) {
    char text[256];
    std::snprintf(text, sizeof(text), format, values...);
    return text;
}

/// Makes text from another program safe for a terminal. Printable ASCII and the locale's letters
/// stay. A newline becomes `\n`, every other byte `\xNN`. Uses the program's LC_CTYPE: call
/// `setlocale` first.
std::string printable(const std::string& text);

/// Breaks a line for a terminal with this many columns, between words if possible, and indents what
/// follows. 0 columns mean that there is no terminal. A character takes one column.
std::string broken(const std::string& line, std::size_t columns);

/// The columns of the terminal behind a descriptor; 0 if it is none.
std::size_t terminalColumns(int descriptor);

/// Calls `handle` with each line of a file, without its line end. Throws an `Error` if the file
/// cannot be read. An `Error` that `handle` throws gets "FILE:LINE: " before it.
void readLines(const std::string& file, const std::function<void(const std::string& line)>& handle);

/// The first word of a line and the rest of the line, both without surrounding blanks.
struct Words {
    explicit Words(const std::string& line);

    std::string first;
    std::string rest;
};

} // namespace tools
