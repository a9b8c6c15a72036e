#pragma once

#include <android/log.h>

#include <cstdarg>

namespace velta::zub::log {

/// Hands one record to the platform's log writer, pausing first where the throughput limit asks
/// for it. Any thread.
[[gnu::format(printf, 3, 0)]] void writeRecord(android_LogPriority priority, const char* tag,
                                               const char* format, va_list args);

} // namespace velta::zub::log
