#include "tools/lipsyncctl/Ping.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <future>
#include <optional>
#include <vector>

#include "tools/lipsyncctl/Interrupt.h"
#include "tools/lipsyncctl/Text.h"

namespace lipsyncctl {

namespace {

struct Figures {
    std::vector<double> times; // ms
    unsigned long refusals = 0;
};

// Stops at the first failure of the connection and returns it.
std::optional<Failure> measure(Connection& connection, unsigned long exchanges, Figures& figures) {
    figures.times.reserve(exchanges);
    while (figures.times.size() < exchanges && !isInterrupted()) {
        velta::zub::common::LipSyncNtpTimestamps timestamps;
        const auto start = std::chrono::steady_clock::now();
        auto failure = connection.getTimestamps(timestamps);
        const std::chrono::duration<double, std::milli> time =
            std::chrono::steady_clock::now() - start;
        if (failure && !failure->isRefusal()) {
            return failure;
        }
        figures.times.push_back(time.count());
        figures.refusals += failure ? 1 : 0;
    }
    return std::nullopt;
}

// A signal ends an exchange with a silent engine, though it arrives in any thread.
std::optional<Failure> measureUntilInterrupted(Connection& connection, unsigned long exchanges,
                                               Figures& figures) {
    constexpr std::chrono::milliseconds patience{50};
    auto measuring =
        std::async(std::launch::async, [&] { return measure(connection, exchanges, figures); });
    while (measuring.wait_for(patience) != std::future_status::ready) {
        if (isInterrupted()) {
            connection.stop();
        }
    }
    return measuring.get();
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
    std::string text = printed("%zu exchanges, %lu refused", times.size(), figures.refusals);
    Record record{{"exchanges", times.size()}, {"min_ms", nullptr}, {"median_ms", nullptr},
                  {"p99_ms", nullptr},         {"max_ms", nullptr}, {"refusals", figures.refusals}};
    if (!times.empty()) {
        record["min_ms"] = times.front();
        record["median_ms"] = percentile(times, 0.5);
        record["p99_ms"] = percentile(times, 0.99);
        record["max_ms"] = times.back();
        text +=
            printed(": min %.3f ms, median %.3f ms, 99th percentile %.3f ms, max %.3f ms",
                    times.front(), percentile(times, 0.5), percentile(times, 0.99), times.back());
    }
    output.print(record, text);
}

} // namespace

int ping(Connection& connection, unsigned long exchanges, Output& output) {
    catchInterrupts();
    Figures figures;
    const auto failure = measureUntilInterrupted(connection, exchanges, figures);
    print(figures, output);
    if (failure && !isInterrupted()) {
        return output.fail(*failure);
    }
    return figures.times.empty() ? exitFailure : EXIT_SUCCESS;
}

} // namespace lipsyncctl
