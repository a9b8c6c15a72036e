#pragma once

#include <cstdarg>

#include "log/LogWriter.h"
#include "utilities/log/Level.h"

namespace velta::utilities {

template <bool>
class AndroidLogTrait;

/// Writes records to the Android log.
template <>
class AndroidLogTrait<false> {
public:
    template <details::Level::Enum level>
    [[gnu::format(printf, 2, 0)]] static void valog(const char* tag, const char* format,
                                                    va_list args) {
        zub::log::writeRecord(priority(level), tag, format, args);
    }

private:
    static constexpr android_LogPriority priority(details::Level::Enum level) {
        return level == details::Level::Fatal ? ANDROID_LOG_FATAL : ANDROID_LOG_INFO;
    }
};

} // namespace velta::utilities
