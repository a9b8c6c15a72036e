#include "tools/lipsyncctl/LiveView.h"

#include <ncurses.h>

#include <algorithm>
#include <cmath>

#include "tools/common/Printable.h"
#include "tools/lipsyncctl/Text.h"
#include "tools/lipsyncctl/Time.h"

namespace lipsyncctl {

namespace {

// Writes one row; what does not fit is cut.
void drawRow(int row, const std::string& text) {
    mvaddnstr(row, 0, text.c_str(), COLS);
}

void drawValue(int row, const char* label, const std::string& value) {
    drawRow(row, printed("%-16s", label) + value);
}

// Draws the depth with a bar in the rest of the row, if there is room.
void drawJitterBuffer(int row, unsigned long depthMs) {
    constexpr double fullMs = 200;
    const std::string depth = printed("%4lu ms ", depthMs);
    drawValue(row, "Jitter buffer", depth);
    const int column = 16 + static_cast<int>(depth.size());
    const int cells = std::min(40, COLS - column - 6);
    if (cells < 5) {
        return;
    }
    const double share = std::min(static_cast<double>(depthMs) / fullMs, 1.0);
    mvaddch(row, column, '[');
    mvhline(row, column + 1, ACS_CKBOARD, static_cast<int>(std::lround(share * cells)));
    mvprintw(row, column + 1 + cells, "] %.0f", fullMs);
}

bool wantsToQuit() {
    constexpr int escape = 27;
    bool quits = false;
    for (int key = getch(); key != ERR; key = getch()) {
        quits = quits || key == 'q' || key == 'Q' || key == escape;
    }
    return quits;
}

} // namespace

LiveView::LiveView(const std::string& socket) : _title("lipsyncctl  " + tools::printable(socket)) {
    // After the Esc key, ncurses waits for the rest of a key's sequence: by default for a second.
    set_escdelay(25);
    initscr();
    cbreak();
    noecho();
    nodelay(stdscr, TRUE);
    keypad(stdscr, TRUE);
    curs_set(0);
}

LiveView::~LiveView() {
    endwin();
}

void LiveView::add(const Reading& reading) {
    _reading = reading;
    _failure.reset();
    _summary.addReading(reading.latencyMs());
    _strip.add(reading.time, reading.latencyMs());
}

void LiveView::add(const Failure& failure) {
    _failure = failure;
    _failure->text = tools::printable(failure.text);
    _summary.addFailure(failure);
}

bool LiveView::refresh(std::chrono::duration<double> waitingTime) {
    constexpr int rowsForBlanks = 16;
    const int blank = LINES >= rowsForBlanks ? 1 : 0;
    erase();
    drawRow(0, _title);
    drawRow(1, status(waitingTime.count()));
    const int top = drawReading(2 + blank) + blank;
    const int end = LINES - 1;
    const int failureTop = end - failureRows(end - top);
    _strip.draw(top, failureTop - top);
    if (failureTop < end) {
        mvaddnstr(failureTop, 0, _failure->text.c_str(), COLS * (end - failureTop));
    }
    drawRow(end, "Press q or Ctrl-C to quit");
    ::refresh();
    return !wantsToQuit();
}

std::string LiveView::status(double waitingSeconds) const {
    constexpr double patienceSeconds = 1;
    const std::string age = _reading
                                ? printed("data %.1f s old", std::max(0.0, now() - _reading->time))
                                : "no data yet";
    std::string state = "Connected";
    if (waitingSeconds >= patienceSeconds) {
        state = printed("No answer for %.0f s", std::floor(waitingSeconds));
    } else if (_failure) {
        state = _failure->isRefusal() ? "Refused by the engine" : "Waiting for the engine";
    } else if (!_reading) {
        state = "Connecting";
    }
    return state + ", " + age;
}

// Returns the row after the last one.
int LiveView::drawReading(int row) const {
    if (_reading) {
        const auto& timestamps = _reading->timestamps;
        const auto time = [](unsigned long ntp) { return timeOfDay(fromNtp(ntp)); };
        drawValue(row++, "Captured", time(timestamps.audioCaptureTimestamp));
        drawValue(row++, "Received", time(timestamps.audioReceivingTimestamp));
        drawValue(row++, "Rendered", time(timestamps.audioRenderingTimestamp));
        drawValue(row++, "Latency",
                  printed("%.1f ms from capture to rendering", _reading->latencyMs()));
        drawJitterBuffer(row++, timestamps.jbmCurrentDepth);
        drawValue(row++, "Margin",
                  printed("%lu ms, the last confirmed on this connection", _reading->marginMs));
    }
    drawRow(row++, _summary.counts());
    return row;
}

// The rows for the text of the failure. The figures have priority.
int LiveView::failureRows(int available) const {
    if (!_failure) {
        return 0;
    }
    const int needed = static_cast<int>(_failure->text.size()) / COLS + 1;
    return std::clamp(needed, 0, std::max(available, 0));
}

} // namespace lipsyncctl
