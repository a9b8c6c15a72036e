#pragma once

#include <algorithm>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <iterator>
#include <string_view>

#include "utilities/log/Level.h"

namespace velta::utilities {

/// Writes records to standard error, one line each: label, "/", tag, a space, the text. A line of
/// up to 1024 bytes is one write, so that lines from several threads do not mix.
class StdIoLogTrait {
public:
    template <details::Level::Enum level>
    [[gnu::format(printf, 2, 0)]] static void valog(const char* tag, const char* format,
                                                    va_list args) {
        va_list copy;
        va_copy(copy, args);
        const bool isWritten = writeAtOnce(label(level), tag, format, copy);
        va_end(copy);
        if (!isWritten) {
            std::fprintf(stderr, "%s/%s ", label(level), tag);
            std::vfprintf(stderr, format, args);
            std::fputc('\n', stderr);
        }
    }

private:
    static constexpr const char* label(details::Level::Enum level) {
        return level == details::Level::Fatal ? "F" : "I";
    }

    // Returns false and writes nothing if the line does not fit the buffer.
    [[gnu::format(printf, 3, 0)]] static bool writeAtOnce(const char* label, const char* tag,
                                                          const char* format, va_list args) {
        char line[1024];
        char* const limit = std::end(line);
        char* end = line;
        for (const std::string_view piece : {label, "/", tag, " "}) {
            if (piece.size() >= static_cast<std::size_t>(limit - end)) {
                return false;
            }
            end = std::copy(piece.begin(), piece.end(), end);
        }
        const auto room = static_cast<std::size_t>(limit - end);
        const int length = std::vsnprintf(end, room, format, args);
        if (length < 0 || static_cast<std::size_t>(length) >= room) {
            return false;
        }
        end += length;
        *end++ = '\n';
        std::fwrite(line, 1, static_cast<std::size_t>(end - line), stderr);
        return true;
    }
};

} // namespace velta::utilities
