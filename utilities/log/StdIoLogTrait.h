#pragma once

#include <cstdarg>
#include <cstdio>

#include "utilities/log/Level.h"

namespace velta::utilities {

/// Writes records to standard error, one line each: label, "/", tag, a blank, the text.
class StdIoLogTrait {
public:
    template <details::Level::Enum level>
    [[gnu::format(printf, 2, 0)]] static void valog(const char* tag, const char* format,
                                                    va_list args) {
        std::fprintf(stderr, "%s/%s ", label(level), tag);
        std::vfprintf(stderr, format, args);
        std::fputc('\n', stderr);
    }

private:
    static constexpr const char* label(details::Level::Enum level) {
        return level == details::Level::Fatal ? "F" : "I";
    }
};

} // namespace velta::utilities
