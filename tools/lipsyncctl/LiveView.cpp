#include "tools/lipsyncctl/LiveView.h"

#include <fcntl.h>
#include <ncurses.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>

namespace lipsyncctl {

namespace {

constexpr int labelWidth = 16;
constexpr int stripHeight = 8;
constexpr int stripSeconds = 60;
constexpr double jitterScaleMs = 200;

// A bar of so many cells, of which a share is filled.
void drawBar(int cells, double share) {
    const int filled = static_cast<int>(std::lround(std::clamp(share, 0.0, 1.0) * cells));
    addch('[');
    for (int cell = 0; cell < cells; ++cell) {
        addch(cell < filled ? ACS_CKBOARD : ' ');
    }
    addch(']');
}

} // namespace

LiveView::LiveView(const std::string& socket) : _socket(socket) {
    if (isatty(STDERR_FILENO) == 1) {
        _savedStandardError = dup(STDERR_FILENO);
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(nowhere, STDERR_FILENO);
        close(nowhere);
    }
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
    if (_savedStandardError >= 0) {
        dup2(_savedStandardError, STDERR_FILENO);
        close(_savedStandardError);
    }
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
    draw();
}

void LiveView::showFailure(const std::string& failure) {
    _failure = failure;
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
    mvprintw(0, 0, "lipsyncctl  %s", _socket.c_str());
    drawTimestamps();
    drawStrip(8);
    drawStatus();
    ::refresh();
}

void LiveView::drawStatus() const {
    const int row = 8 + stripHeight + 3;
    if (!_failure.empty()) {
        mvprintw(row, 0, "Waiting for the engine: %s", _failure.c_str());
    } else if (_hasReading) {
        mvprintw(row, 0, "Last reading %.1f s ago", std::max(0.0, now() - _reading.time));
    } else {
        mvaddstr(row, 0, "Waiting for the first reading");
    }
    mvaddstr(LINES - 1, 0, "q or Ctrl-C ends");
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
    int row = 2;
    for (const auto& time : times) {
        mvprintw(row++, 0, "%-*s%s", labelWidth, time.label,
                 timeOfDay(ntpToUnix(time.ntp)).c_str());
    }
    mvprintw(row++, 0, "%-*s%.1f ms from capture to rendering", labelWidth, "Latency",
             _reading.latencyMs());
    mvprintw(row, 0, "%-*s%4lu ms ", labelWidth, "Jitter buffer", timestamps.jbmCurrentDepth);
    drawBar(std::clamp(COLS - labelWidth - 20, 10, 40),
            static_cast<double>(timestamps.jbmCurrentDepth) / jitterScaleMs);
    printw(" %.0f", jitterScaleMs);
}

// Latency of the last minute: a column a second, the present one at the right.
void LiveView::drawStrip(int top) const {
    double largest = 0;
    for (const Second& second : _lastMinute) {
        largest = std::max(largest, second.latencyMs);
    }
    constexpr double stepMs = 50;
    const double scaleMs = std::max(stepMs, std::ceil(largest / stepMs) * stepMs);
    mvaddstr(top, 0, "Latency of the last minute, ms");
    mvprintw(top + 1, 0, "%5.0f ", scaleMs);
    mvprintw(top + stripHeight, 0, "%5.0f ", scaleMs / stripHeight);
    const int columns = std::clamp(COLS - 8, 1, stripSeconds);
    const long present = static_cast<long>(now());
    mvvline(top + 1, 6, ACS_VLINE, stripHeight);
    mvhline(top + stripHeight + 1, 6, ACS_HLINE, columns + 1);
    mvaddch(top + stripHeight + 1, 6, ACS_LLCORNER);
    for (const Second& second : _lastMinute) {
        const long age = present - second.time;
        if (age < 0 || age >= columns) {
            continue;
        }
        const int height = static_cast<int>(std::lround(second.latencyMs / scaleMs * stripHeight));
        for (int cell = 0; cell < std::clamp(height, 0, stripHeight); ++cell) {
            mvaddch(top + stripHeight - cell, 7 + columns - 1 - static_cast<int>(age), ACS_CKBOARD);
        }
    }
}

} // namespace lipsyncctl
