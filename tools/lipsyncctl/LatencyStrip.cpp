#include "tools/lipsyncctl/LatencyStrip.h"

#include <ncurses.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "tools/common/Text.h"

namespace lipsyncctl {

namespace {

constexpr int stripSeconds = 60;
constexpr double stepMs = 50;

// Maps latencies to the rows of the strip: row 0 is at the top.
struct Scale {
    double topMs = stepMs;
    double bottomMs = 0;
    int height = 0;

    int row(double ms) const {
        return static_cast<int>(std::lround((topMs - ms) / (topMs - bottomMs) * height));
    }

    // The first row below the line for 0. At least one row is above that line, and if there are
    // latencies below 0, at least one is below it.
    int zeroRow() const { return std::clamp(row(0), 1, bottomMs < 0 ? height - 1 : height); }
};

// Returns the column of the line.
int drawAxes(int top, const Scale& scale) {
    const std::string highest = tools::printed("%.0f", scale.topMs);
    const std::string lowest = tools::printed("%.0f", scale.bottomMs);
    const int width = static_cast<int>(std::max({highest.size(), lowest.size(), std::size_t{5}}));
    mvprintw(top, 0, "%*s", width, highest.c_str());
    mvprintw(top + scale.zeroRow(), 0, "%*s", width, "0");
    if (scale.bottomMs < 0) {
        mvprintw(top + scale.height, 0, "%*s", width, lowest.c_str());
    }
    mvvline(top, width + 1, ACS_VLINE, scale.height);
    mvhline(top + scale.height, width + 1, ACS_HLINE,
            std::clamp(COLS - width - 2, 1, stripSeconds + 1));
    mvaddch(top + scale.height, width + 1, ACS_LLCORNER);
    return width + 1;
}

// From the line for 0 up or down; at least one cell, so that every value can be seen.
void drawColumn(int top, int column, const Scale& scale, double ms) {
    const int zero = scale.zeroRow();
    const int first = ms < 0 ? zero : std::min(scale.row(ms), zero - 1);
    const int last = ms < 0 ? std::max(scale.row(ms), zero + 1) : zero;
    mvvline(top + first, column, ACS_CKBOARD, last - first);
}

} // namespace

void LatencyStrip::add(tools::Time time, double latencyMs) {
    const auto second = std::chrono::floor<std::chrono::seconds>(time);
    if (_lastMinute.empty() || _lastMinute.back().time != second) {
        _lastMinute.push_back({second, latencyMs});
    } else {
        _lastMinute.back().latencyMs = std::max(_lastMinute.back().latencyMs, latencyMs);
    }
    while (_lastMinute.front().time <= second - std::chrono::seconds(stripSeconds)) {
        _lastMinute.pop_front();
    }
}

void LatencyStrip::draw(int top, int rows) const {
    constexpr int leastHeight = 3;
    constexpr int greatestHeight = 8;
    // One row for the title and one for the axis.
    Scale scale;
    scale.height = std::min(rows - 2, greatestHeight);
    if (_lastMinute.empty() || scale.height < leastHeight) {
        return;
    }
    const auto [lowest, highest] = std::minmax_element(
        _lastMinute.begin(), _lastMinute.end(),
        [](const Second& a, const Second& b) { return a.latencyMs < b.latencyMs; });
    scale.bottomMs = std::min(0.0, std::floor(lowest->latencyMs / stepMs) * stepMs);
    scale.topMs =
        std::max(scale.bottomMs < 0 ? 0 : stepMs, std::ceil(highest->latencyMs / stepMs) * stepMs);
    mvaddnstr(top, 0, "Maximum latency in each second of the last minute, ms", COLS);
    const int axis = drawAxes(top + 1, scale);
    const int right = std::min(axis + stripSeconds, COLS - 1);
    const auto present = std::chrono::floor<std::chrono::seconds>(tools::now());
    for (const Second& second : _lastMinute) {
        const long age = (present - second.time).count();
        if (age >= 0 && age < right - axis) {
            drawColumn(top + 1, right - static_cast<int>(age), scale, second.latencyMs);
        }
    }
}

} // namespace lipsyncctl
