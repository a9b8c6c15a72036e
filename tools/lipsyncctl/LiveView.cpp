#include "tools/lipsyncctl/LiveView.h"

#include <ncurses.h>
#include <term.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "tools/common/Printable.h"
#include "tools/lipsyncctl/Time.h"

namespace lipsyncctl {

namespace {

constexpr int labelWidth = 16;
constexpr int stripTop = 9;
constexpr int stripHeight = 8;
constexpr int failureLines = 4;
constexpr int stripSeconds = 60;
constexpr double jitterScaleMs = 200;

// Draws a bar that is filled to this share.
void drawBar(int cells, double share) {
    const int filled = static_cast<int>(std::lround(std::clamp(share, 0.0, 1.0) * cells));
    addch('[');
    for (int cell = 0; cell < cells; ++cell) {
        addch(cell < filled ? ACS_CKBOARD : ' ');
    }
    addch(']');
}

} // namespace

bool LiveView::isPossible() {
    int error = 0;
    if (isatty(STDOUT_FILENO) != 1 || setupterm(nullptr, STDOUT_FILENO, &error) != OK) {
        return false;
    }
    del_curterm(cur_term);
    return true;
}

LiveView::LiveView(const std::string& socket) : _socket(tools::printable(socket)) {
    initscr();
    cbreak();
    noecho();
    nodelay(stdscr, TRUE);
    keypad(stdscr, TRUE);
    curs_set(0);
    draw();
}

LiveView::~LiveView() {
    endwin();
}

void LiveView::show(const Reading& reading) {
    _reading = reading;
    _hasReading = true;
    _failure.clear();
    const long second = static_cast<long>(reading.time);
    if (_lastMinute.empty() || _lastMinute.back().time != second) {
        _lastMinute.push_back({second, reading.latencyMs()});
    } else {
        _lastMinute.back().latencyMs = std::max(_lastMinute.back().latencyMs, reading.latencyMs());
    }
    while (_lastMinute.front().time <= second - stripSeconds) {
        _lastMinute.pop_front();
    }
    draw();
}

void LiveView::showFailure(const std::string& failure) {
    _failure = tools::printable(failure);
    draw();
}

bool LiveView::refresh() {
    bool staysOpen = true;
    for (int key = getch(); key != ERR; key = getch()) {
        staysOpen = staysOpen && key != 'q';
    }
    draw();
    return staysOpen;
}

void LiveView::draw() const {
    erase();
    mvaddnstr(0, 0, ("lipsyncctl  " + _socket).c_str(), COLS);
    mvaddnstr(1, 0, status().c_str(), COLS);
    drawTimestamps();
    if (LINES >= stripTop + stripHeight + 3) {
        drawStrip();
    }
    move(LINES - 1, 0);
    clrtoeol();
    mvaddnstr(LINES - 1, 0, "Press q or Ctrl-C to quit", COLS - 1);
    if (!_failure.empty()) {
        // On several lines if necessary.
        mvaddnstr(std::max(2, LINES - failureLines), 0, _failure.c_str(), COLS * failureLines - 1);
    }
    ::refresh();
}

std::string LiveView::status() const {
    char age[64] = "";
    if (_hasReading) {
        std::snprintf(age, sizeof(age), "Last reading %.1f s ago",
                      std::max(0.0, now() - _reading.time));
    }
    if (_failure.empty()) {
        return _hasReading ? age : "Waiting for the first reading";
    }
    return _failure.substr(0, _failure.find(':')) + (_hasReading ? std::string(". ") + age : "");
}

void LiveView::drawTimestamps() const {
    if (!_hasReading) {
        return;
    }
    const auto& timestamps = _reading.timestamps;
    const struct {
        const char* label;
        unsigned long ntp;
    } times[] = {
        {"Captured", timestamps.audioCaptureTimestamp},
        {"Received", timestamps.audioReceivingTimestamp},
        {"Rendered", timestamps.audioRenderingTimestamp},
    };
    int row = 3;
    for (const auto& time : times) {
        mvprintw(row++, 0, "%-*s%s", labelWidth, time.label, timeOfDay(fromNtp(time.ntp)).c_str());
    }
    mvprintw(row++, 0, "%-*s%.1f ms from capture to rendering", labelWidth, "Latency",
             _reading.latencyMs());
    mvprintw(row, 0, "%-*s%4lu ms ", labelWidth, "Jitter buffer", timestamps.jbmCurrentDepth);
    drawBar(std::clamp(COLS - labelWidth - 20, 10, 40),
            static_cast<double>(timestamps.jbmCurrentDepth) / jitterScaleMs);
    printw(" %.0f", jitterScaleMs);
}

// Draws the latency of the last minute: one column per second with its maximum, the current second
// on the right.
void LiveView::drawStrip() const {
    constexpr int top = stripTop;
    double largest = 0;
    for (const Second& second : _lastMinute) {
        largest = std::max(largest, second.latencyMs);
    }
    constexpr double stepMs = 50;
    const double scaleMs = std::max(stepMs, std::ceil(largest / stepMs) * stepMs);
    mvaddstr(top, 0, "Maximum latency in each second of the last minute, ms");
    mvprintw(top + 1, 0, "%5.0f ", scaleMs);
    mvprintw(top + stripHeight, 0, "%5.0f ", scaleMs / stripHeight);
    const int stripColumns = std::clamp(COLS - 8, 1, stripSeconds);
    const long present = static_cast<long>(now());
    mvvline(top + 1, 6, ACS_VLINE, stripHeight);
    mvhline(top + stripHeight + 1, 6, ACS_HLINE, stripColumns + 1);
    mvaddch(top + stripHeight + 1, 6, ACS_LLCORNER);
    for (const Second& second : _lastMinute) {
        const long age = present - second.time;
        if (age < 0 || age >= stripColumns) {
            continue;
        }
        const int height = static_cast<int>(std::lround(second.latencyMs / scaleMs * stripHeight));
        for (int cell = 0; cell < std::clamp(height, 0, stripHeight); ++cell) {
            mvaddch(top + stripHeight - cell, 7 + stripColumns - 1 - static_cast<int>(age),
                    ACS_CKBOARD);
        }
    }
}

} // namespace lipsyncctl
