#include "benchmarks/exchange/Turn.h"

#include <sys/resource.h>

#include <chrono>

namespace exchange {

namespace {

using Clock = std::chrono::steady_clock;

double microseconds(const timeval& time) {
    return 1e6 * static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec);
}

rusage usage() {
    rusage now{};
    getrusage(RUSAGE_SELF, &now);
    return now;
}

void repeat(Contestant& contestant, int exchanges) {
    for (int i = 0; i < exchanges; ++i) {
        contestant.exchange();
    }
}

} // namespace

Cost takeTurn(Contestant& contestant, int warmUp, int exchanges) {
    contestant.beginTurn();
    repeat(contestant, warmUp);
    const rusage usedBefore = usage();
    const Clock::time_point start = Clock::now();
    repeat(contestant, exchanges);
    const std::chrono::duration<double, std::nano> elapsed = Clock::now() - start;
    const rusage used = usage();
    contestant.endTurn();
    return {elapsed.count() / exchanges,
            (microseconds(used.ru_utime) - microseconds(usedBefore.ru_utime)) / exchanges,
            (microseconds(used.ru_stime) - microseconds(usedBefore.ru_stime)) / exchanges};
}

} // namespace exchange
