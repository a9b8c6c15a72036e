#include "benchmarks/exchange/Table.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>

namespace exchange {

namespace {

// The smallest number that at least this part of them does not exceed.
double quantile(std::vector<double> numbers, double part) {
    std::sort(numbers.begin(), numbers.end());
    const auto rank =
        static_cast<std::size_t>(std::ceil(part * static_cast<double>(numbers.size())));
    return numbers[rank == 0 ? 0 : rank - 1];
}

std::vector<double> ratios(const Series& series, const Series& floor) {
    std::vector<double> result;
    for (std::size_t round = 0; round < series.costs.size(); ++round) {
        result.push_back(series.costs[round].ns / floor.costs[round].ns);
    }
    return result;
}

std::vector<double> column(const Series& series, double Cost::*member) {
    std::vector<double> result;
    for (const Cost& cost : series.costs) {
        result.push_back(cost.*member);
    }
    return result;
}

// The kernel divides processor time between the two kinds by what it finds at its ticks, of which
// a turn may have none: only the mean over all turns tells something.
double mean(const Series& series, double Cost::*member) {
    double sum = 0;
    for (const Cost& cost : series.costs) {
        sum += cost.*member;
    }
    return sum / static_cast<double>(series.costs.size());
}

void printRow(const Series& series, const Series& floor, const std::string& cores) {
    const std::vector<double> times = ratios(series, floor);
    std::printf("| %s | %s | %.2f | %.2f-%.2f | %.2f-%.2f | %.0f | %.2f | %.2f |\n",
                series.name.c_str(), cores.c_str(), quantile(times, 0.5), quantile(times, 0.1),
                quantile(times, 0.9), quantile(times, 0), quantile(times, 1),
                quantile(column(series, &Cost::ns), 0.5), mean(series, &Cost::userUs),
                mean(series, &Cost::systemUs));
}

} // namespace

void printTable(const std::vector<Series>& series, const std::string& cores) {
    std::printf(
        "| contestant | processes | times the floor | 10-90 %% of rounds | all rounds | "
        "ns an exchange | client user, us | client system, us |\n"
        "|---|---|---|---|---|---|---|---|\n");
    for (const Series& one : series) {
        printRow(one, series.front(), cores);
    }
}

} // namespace exchange
