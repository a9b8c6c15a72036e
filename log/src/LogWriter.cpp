#include "log/LogWriter.h"

#include <unistd.h>

#include "log/ThroughputLimit.h"

namespace velta::zub::log {

namespace {

// Records that the writer is going to drop must not be counted. On Linux it drops none.
bool writerReachesItsSocket() {
#ifdef __ANDROID__
    constexpr uid_t logDaemonUser = 1036;
    return getuid() != logDaemonUser && access("/dev/socket/logdw", W_OK) == 0;
#else
    return true;
#endif
}

} // namespace

void writeRecord(android_LogPriority priority, const char* tag, const char* format, va_list args) {
    if (throughput_limit.isOn() && writerReachesItsSocket()) {
        throughput_limit.beforeRecord();
    }
    __android_log_vprint(priority, tag, format, args);
}

} // namespace velta::zub::log
