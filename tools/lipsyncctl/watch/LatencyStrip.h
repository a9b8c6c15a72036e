#pragma once

#include <ncurses.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <map>

#include "tools/common/Time.h"

namespace lipsyncctl {

/// The latency of the last minute: one column per second with its maximum, the current second on
/// the right.
class LatencyStrip {
public:
    void add(tools::Time time, double latencyMs) {
        const Second second = std::chrono::floor<Second>(time);
        double& maximum = _maximaMs.try_emplace(second, latencyMs).first->second;
        maximum = std::max(maximum, latencyMs);
        _maximaMs.erase(_maximaMs.begin(), _maximaMs.upper_bound(second - Second(seconds)));
    }

    /// Draws into these rows of the screen. Draws nothing if they are too few.
    void draw(int top, int rows) const {
        // One row for the title and one for the axis.
        const int height = std::min(rows - 2, 8);
        if (_maximaMs.empty() || height < 3) {
            return;
        }
        constexpr double stepMs = 50;
        double bottomMs = 0;
        double topMs = stepMs;
        for (const auto& [second, ms] : _maximaMs) {
            bottomMs = std::min(bottomMs, std::floor(ms / stepMs) * stepMs);
            topMs = std::max(topMs, std::ceil(ms / stepMs) * stepMs);
        }
        mvaddnstr(top, 0, "Maximum latency in each second of the last minute, ms", COLS);
        mvprintw(top + 1, 0, "%*.0f", axis - 1, topMs);
        mvprintw(top + 1 + height, 0, "%*.0f", axis - 1, bottomMs);
        mvvline(top + 1, axis, ACS_VLINE, height);
        mvhline(top + 1 + height, axis, ACS_HLINE, std::clamp(COLS - axis - 1, 1, seconds + 1));
        mvaddch(top + 1 + height, axis, ACS_LLCORNER);
        const int right = std::min(axis + seconds, COLS - 1);
        const auto present = std::chrono::floor<Second>(tools::now());
        for (const auto& [second, ms] : _maximaMs) {
            const auto age = (present - second).count();
            if (age >= 0 && age < right - axis) {
                // At least one cell, so that every value can be seen.
                const double share = (ms - bottomMs) / (topMs - bottomMs);
                const int cells = std::max(static_cast<int>(std::lround(share * height)), 1);
                mvvline(top + 1 + height - cells, right - static_cast<int>(age), ACS_CKBOARD,
                        cells);
            }
        }
    }

private:
    using Second = std::chrono::seconds;

    static constexpr int seconds = 60;
    // The column of the vertical line. Wrong clocks make large labels.
    static constexpr int axis = 9;

    std::map<Second, double> _maximaMs; ///< By second.
};

} // namespace lipsyncctl
