#include "tools/lipsyncctl/Ping.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <optional>
#include <vector>

#include "tools/common/Text.h"

namespace lipsyncctl {

namespace {

struct Figures {
    std::vector<double> times; // ms
    unsigned long refusals = 0;
};

// Throws a failure that is no refusal.
void measure(Connection& connection, unsigned long exchanges, Figures& figures) {
    figures.times.reserve(exchanges);
    while (figures.times.size() < exchanges) {
        const auto start = std::chrono::steady_clock::now();
        try {
            connection.getTimestamps();
        } catch (const Failure& failure) {
            if (!failure.isRefusal()) {
                throw;
            }
            ++figures.refusals;
        }
        const std::chrono::duration<double, std::milli> time =
            std::chrono::steady_clock::now() - start;
        figures.times.push_back(time.count());
    }
}

// The smallest value such that at least this share of the values are not larger.
double percentile(const std::vector<double>& sorted, double share) {
    const auto rank =
        static_cast<std::size_t>(std::ceil(share * static_cast<double>(sorted.size())));
    return sorted[std::clamp<std::size_t>(rank, 1, sorted.size()) - 1];
}

void print(Figures& figures, Output& output) {
    std::vector<double>& times = figures.times;
    std::sort(times.begin(), times.end());
    const auto figure = [&](double share) {
        return times.empty() ? Record() : Record(percentile(times, share));
    };
    std::string text = tools::printed("%zu exchanges, %lu refused", times.size(), figures.refusals);
    if (!times.empty()) {
        text += tools::printed(": min %.3f, median %.3f, p99 %.3f, max %.3f ms", times.front(),
                               percentile(times, 0.5), percentile(times, 0.99), times.back());
    }
    output.print({{"exchanges", times.size()},
                  {"min_ms", figure(0)},
                  {"median_ms", figure(0.5)},
                  {"p99_ms", figure(0.99)},
                  {"max_ms", figure(1)},
                  {"refusals", figures.refusals}},
                 text);
}

} // namespace

void ping(Connection& connection, unsigned long exchanges, Output& output, Interrupt& interrupt) {
    Figures figures;
    std::optional<Failure> failure;
    interrupt.setHandler([&] { connection.stop(); });
    try {
        measure(connection, exchanges, figures);
    } catch (const Failure& caught) {
        failure = caught;
    }
    interrupt.setHandler(nullptr);
    print(figures, output);
    if (failure && interrupt.exitStatus() == 0) {
        throw Failure(*failure);
    }
}

} // namespace lipsyncctl
