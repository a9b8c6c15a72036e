#pragma once

#include <android/log.h>

#include <sys/types.h>

#include <cstdarg>

namespace velta::zub::log {

/// Whether Android's log writer will send a record of this user to the log daemon. The writer drops
/// the daemon's own records, and every record while the daemon's socket is not writable.
bool reachesLogDaemon(uid_t user, bool isSocketWritable);

/// Passes one record to the platform's log writer. First blocks for as long as the throughput limit
/// requires. Any thread.
[[gnu::format(printf, 3, 0)]] void writeRecord(android_LogPriority priority, const char* tag,
                                               const char* format, va_list args);

} // namespace velta::zub::log
