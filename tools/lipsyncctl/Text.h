#pragma once

#include <cstdio>
#include <string>

namespace lipsyncctl {

/// What `printf` would print; at most 255 characters.
template <typename... Values>
std::string printed(const char* format, Values... values) {
    char text[256];
    std::snprintf(text, sizeof(text), format, values...);
    return text;
}

} // namespace lipsyncctl
