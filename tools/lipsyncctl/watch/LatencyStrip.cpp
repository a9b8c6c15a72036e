#include "tools/lipsyncctl/watch/LatencyStrip.h"

#include <ncurses.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "tools/common/Text.h"

namespace lipsyncctl {

namespace {

using std::chrono::seconds;

constexpr int stripSeconds = 60;

// Draws the labels and the lines around `height` rows. Returns the column of the vertical line.
int drawAxes(int top, int height, double bottomMs, double topMs) {
    const std::string highest = tools::printed("%5.0f", topMs);
    const std::string lowest = tools::printed("%5.0f", bottomMs);
    const int width = static_cast<int>(std::max(highest.size(), lowest.size()));
    mvprintw(top, 0, "%*s", width, highest.c_str());
    mvprintw(top + height, 0, "%*s", width, lowest.c_str());
    mvvline(top, width + 1, ACS_VLINE, height);
    mvhline(top + height, width + 1, ACS_HLINE, std::clamp(COLS - width - 2, 1, stripSeconds + 1));
    mvaddch(top + height, width + 1, ACS_LLCORNER);
    return width + 1;
}

} // namespace

void LatencyStrip::add(tools::Time time, double latencyMs) {
    const auto second = std::chrono::floor<seconds>(time);
    double& maximum = _maximaMs.try_emplace(second, latencyMs).first->second;
    maximum = std::max(maximum, latencyMs);
    _maximaMs.erase(_maximaMs.begin(), _maximaMs.upper_bound(second - seconds(stripSeconds)));
}

void LatencyStrip::draw(int top, int rows) const {
    constexpr double stepMs = 50;
    // One row for the title and one for the axis.
    const int height = std::min(rows - 2, 8);
    if (_maximaMs.empty() || height < 3) {
        return;
    }
    double bottomMs = 0;
    double topMs = stepMs;
    for (const auto& [second, ms] : _maximaMs) {
        bottomMs = std::min(bottomMs, std::floor(ms / stepMs) * stepMs);
        topMs = std::max(topMs, std::ceil(ms / stepMs) * stepMs);
    }
    mvaddnstr(top, 0, "Maximum latency in each second of the last minute, ms", COLS);
    const int axis = drawAxes(top + 1, height, bottomMs, topMs);
    const int right = std::min(axis + stripSeconds, COLS - 1);
    const auto present = std::chrono::floor<seconds>(tools::now());
    for (const auto& [second, ms] : _maximaMs) {
        const auto age = static_cast<int>((present - second).count());
        if (age >= 0 && age < right - axis) {
            // At least one cell, so that every value can be seen.
            const double cells =
                std::max(std::round((ms - bottomMs) / (topMs - bottomMs) * height), 1.0);
            mvvline(top + 1 + height - static_cast<int>(cells), right - age, ACS_CKBOARD,
                    static_cast<int>(cells));
        }
    }
}

} // namespace lipsyncctl
