#include "benchmarks/exchange/Core.h"

#include <sched.h>

#include <cerrno>
#include <chrono>
#include <cstddef>
#include <fstream>
#include <map>
#include <string>
#include <system_error>
#include <thread>

namespace exchange {

namespace {

// How long each core has been idle, in ticks.
std::map<std::size_t, long> idleTicks() {
    std::map<std::size_t, long> ticks;
    std::ifstream file("/proc/stat");
    std::string name;
    long user = 0;
    long nice = 0;
    long system = 0;
    long idle = 0;
    for (std::string rest; file >> name >> user >> nice >> system >> idle; getline(file, rest)) {
        if (name.size() > 3 && name.compare(0, 3, "cpu") == 0) {
            ticks[std::stoul(name.substr(3))] = idle;
        }
    }
    return ticks;
}

std::size_t idlestOf(const cpu_set_t& allowed) {
    auto before = idleTicks();
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    std::size_t idlest = 0;
    long most = -1;
    for (const auto& [core, ticks] : idleTicks()) {
        const long idle = ticks - before[core];
        if (CPU_ISSET(core, &allowed) && idle > most) {
            most = idle;
            idlest = core;
        }
    }
    return idlest;
}

} // namespace

void pinToIdlestCore() {
    cpu_set_t allowed;
    sched_getaffinity(0, sizeof(allowed), &allowed);
    cpu_set_t chosen;
    CPU_ZERO(&chosen);
    CPU_SET(idlestOf(allowed), &chosen);
    if (sched_setaffinity(0, sizeof(chosen), &chosen) != 0) {
        throw std::system_error(errno, std::generic_category(), "sched_setaffinity");
    }
}

} // namespace exchange
