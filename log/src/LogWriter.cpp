#include "log/LogWriter.h"

#include <unistd.h>

#include "log/ThroughputLimit.h"

namespace velta::zub::log {

namespace {

// Do not count records that the writer will drop. On Linux it drops none.
bool isNextRecordCounted() {
#ifdef __ANDROID__
    return reachesLogDaemon(getuid(), access("/dev/socket/logdw", W_OK) == 0);
#else
    return true;
#endif
}

} // namespace

bool reachesLogDaemon(uid_t user, bool isSocketWritable) {
    constexpr uid_t logDaemonUser = 1036;
    return user != logDaemonUser && isSocketWritable;
}

void writeRecord(android_LogPriority priority, const char* tag, const char* format, va_list args) {
    if (throughput_limit.isOn() && isNextRecordCounted()) {
        throughput_limit.beforeRecord();
    }
    __android_log_vprint(priority, tag, format, args);
}

} // namespace velta::zub::log
