#pragma once

#include "benchmarks/avsync/Rules.h"

namespace benchmarks {

/// The shift for each reading with which most readings are inside, if each change costs `price`
/// readings: the best that someone could do who knows the whole call. Dynamic programming: the best
/// way to a shift comes from the same shift or from the one that was best before.
inline std::vector<double> bestShifts(const Call& call, double price) {
    // From 100 down to -800 ms.
    constexpr std::size_t count = 86;
    const auto shift = [](std::size_t k) {
        return (k < 5 ? 20 : 10) * (5 - static_cast<double>(k));
    };
    std::vector<double> value(count, -1e9);
    std::size_t best = 5; // At the start of a call nothing is corrected.
    value[best] = 0;
    std::vector<std::vector<std::size_t>> before(call.size(), std::vector<std::size_t>(count));
    for (std::size_t i = 0; i < call.size(); ++i) {
        const double changed = value[best] - price;
        for (std::size_t k = 0; k < count; ++k) {
            before[i][k] = changed > value[k] ? best : k;
            const double skew = call[i].audioMs + shift(k) - call[i].pictureMs;
            // Of two shifts with the same effect, the smaller one is better.
            value[k] = std::max(changed, value[k]) + (allowedSkew.contains(skew) ? 1 : 0) -
                       1e-6 * std::abs(shift(k));
        }
        best = std::size_t(std::max_element(value.begin(), value.end()) - value.begin());
    }
    std::vector<double> shifts(call.size());
    for (std::size_t i = call.size(); i-- > 0; best = before[i][best]) {
        shifts[i] = shift(best);
    }
    return shifts;
}

/// What can be reached with more and more changes.
inline std::vector<Score> optimum(const Call& call) {
    std::vector<Score> curve{replay(call, noHelp())};
    for (double price = 300; price > 0.5; price /= 1.2) {
        const auto shifts = bestShifts(call, price);
        auto next = shifts.begin();
        const Rule rule = byShift(
            [&](double, double, double shift) { return ++next == shifts.end() ? shift : *next; });
        curve.push_back(replay(call, rule));
    }
    return curve;
}

/// With this number of changes a minute.
inline Score pointAt(const std::vector<Score>& curve, double changes) {
    const auto more = std::find_if(curve.begin() + 1, curve.end() - 1,
                                   [&](const Score& score) { return score[Changes] > changes; });
    const Score& fewer = more[-1];
    const Score step = *more - fewer;
    return fewer + step * std::min((changes - fewer[Changes]) / std::max(step[Changes], 1e-9), 1.0);
}

} // namespace benchmarks
