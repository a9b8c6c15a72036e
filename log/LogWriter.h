#pragma once

#include <android/log.h>

#include <sys/types.h>

#include <cstdarg>

namespace velta::zub::log {

/// Whether Android's log writer will hand a record of this user to the log daemon. It drops the
/// daemon's own records, and all records while the daemon's socket cannot be written to.
bool reachesLogDaemon(uid_t user, bool isSocketWritable);

/// Hands one record to the platform's log writer, pausing first where the throughput limit asks
/// for it. Any thread.
[[gnu::format(printf, 3, 0)]] void writeRecord(android_LogPriority priority, const char* tag,
                                               const char* format, va_list args);

} // namespace velta::zub::log
