#include "log/ThroughputLimit.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace velta::zub::log {

ThroughputLimit throughput_limit =
    ThroughputLimit::fromSetting(std::getenv("LIBLOG_THROUGHPUT_LIMIT"));

ThroughputLimit ThroughputLimit::fromSetting(const char* setting) {
    unsigned int records = 0;
    unsigned int pauseMs = 0;
    if (setting == nullptr || std::sscanf(setting, "%u/%u", &records, &pauseMs) != 2) {
        return {0, 0, 0};
    }
    return {0, records, pauseMs * 1000U};
}

void ThroughputLimit::beforeRecord() {
    ++counter;
    if (counter >= limit) {
        usleep(pauseUs);
        counter = 0;
    }
}

} // namespace velta::zub::log
