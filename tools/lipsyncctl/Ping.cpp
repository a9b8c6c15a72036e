#include <algorithm>
#include <chrono>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

#include "tools/common/Text.h"
#include "tools/lipsyncctl/Commands.h"
#include "tools/lipsyncctl/Interrupt.h"
#include "tools/lipsyncctl/Reading.h"

namespace lipsyncctl {

namespace {

// The smallest value such that at least this share of the values are not larger.
double percentile(const std::vector<double>& sorted, double share) {
    const auto rank =
        static_cast<std::size_t>(std::ceil(share * static_cast<double>(sorted.size())));
    return sorted[std::max<std::size_t>(rank, 1) - 1];
}

void print(std::vector<double> times, unsigned long refusals, Output& output) {
    std::sort(times.begin(), times.end());
    Record record{{"exchanges", times.size()}};
    std::string text = tools::printed("%zu exchanges, %lu refused", times.size(), refusals);
    constexpr std::pair<const char*, double> shares[] = {
        {"min", 0}, {"median", 0.5}, {"p99", 0.99}, {"max", 1}};
    const char* separator = ":";
    for (const auto& [name, share] : shares) {
        Record& figure = record[std::string(name) + "_ms"];
        if (!times.empty()) {
            figure = percentile(times, share);
            text += tools::printed("%s %s %.3f", separator, name, figure.get<double>());
            separator = ",";
        }
    }
    record["refusals"] = refusals;
    output.print(record, text + (times.empty() ? "" : " ms"));
}

} // namespace

void ping(Connection& connection, unsigned long exchanges, Output& output) {
    std::vector<double> times; // ms
    unsigned long refusals = 0;
    std::optional<Failure> failure;
    setInterruptHandler([&] { connection.stop(); });
    while (times.size() < exchanges) {
        const auto start = std::chrono::steady_clock::now();
        failure = read(connection).failure;
        const std::chrono::duration<double, std::milli> time =
            std::chrono::steady_clock::now() - start;
        if (failure && !failure->isRefusal()) {
            break;
        }
        times.push_back(time.count());
        refusals += failure ? 1 : 0;
    }
    setInterruptHandler(nullptr);
    print(times, refusals, output);
    if (failure && !failure->isRefusal() && interruptStatus() == 0) {
        throw Failure(*failure);
    }
}

} // namespace lipsyncctl
