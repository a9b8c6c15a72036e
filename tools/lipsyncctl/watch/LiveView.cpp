#include "tools/lipsyncctl/watch/LiveView.h"

#include <ncurses.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <limits>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "tools/common/Text.h"
#include "tools/common/Time.h"
#include "tools/lipsyncctl/Commands.h"
#include "tools/lipsyncctl/Interrupt.h"
#include "tools/lipsyncctl/watch/LatencyStrip.h"

// Last, because it defines macros with common names.
#include <term.h>

namespace lipsyncctl {

namespace {

// Counts what a watch has seen.
class Tally {
public:
    void add(const Reading& reading) {
        const bool isOutage = reading.failure && !reading.failure->isRefusal();
        _outages += isOutage && !_isOutage ? 1 : 0;
        _isOutage = isOutage;
        _refusals += reading.failure && !isOutage ? 1 : 0;
        if (!reading.failure) {
            const double latencyMs = reading.latencyMs();
            _minMs = std::min(_minMs, latencyMs);
            _maxMs = std::max(_maxMs, latencyMs);
            _sumMs += latencyMs;
            ++_readings;
        }
    }

    // Lines for people. The latency is empty without readings.
    std::string counts() const {
        return tools::printed("Readings %lu, refusals %lu, outages %lu", _readings, _refusals,
                              _outages);
    }

    std::string latency() const {
        return _readings == 0
                   ? ""
                   : tools::printed("Latency: min %.1f ms, mean %.1f ms, max %.1f ms", _minMs,
                                    _sumMs / static_cast<double>(_readings), _maxMs);
    }

private:
    unsigned long _readings = 0;
    unsigned long _refusals = 0;
    unsigned long _outages = 0; // Of any length.
    bool _isOutage = false;
    double _minMs = std::numeric_limits<double>::infinity();
    double _maxMs = -_minMs;
    double _sumMs = 0;
};

// Writes one row; what does not fit is cut.
void drawRow(int row, const std::string& text) {
    mvaddnstr(row, 0, text.c_str(), COLS);
}

// Owns the terminal, and draws what the watch has seen.
class LiveView {
public:
    // `tally` must outlive the view.
    LiveView(const std::string& socket, Tally& tally)
        : _title("lipsyncctl  " + tools::printable(socket)), _tally(tally) {
        // After the Esc key, ncurses waits for the rest of a key's sequence: by default for a
        // second.
        set_escdelay(25);
        initscr();
        cbreak();
        noecho();
        nodelay(stdscr, TRUE);
        keypad(stdscr, TRUE);
        curs_set(0);
    }

    ~LiveView() { endwin(); }

    LiveView(const LiveView&) = delete;
    LiveView& operator=(const LiveView&) = delete;

    // Any thread.
    void add(const Reading& reading) {
        const std::lock_guard<std::mutex> lock(_mutex);
        _tally.add(reading);
        _failure = reading.failure;
        if (!reading.failure) {
            _reading = reading;
            _strip.add(reading.time, reading.latencyMs());
        }
    }

    // Draws everything. The current call has been waiting for `waitingSeconds`.
    void draw(double waitingSeconds) {
        const std::lock_guard<std::mutex> lock(_mutex);
        constexpr int rowsForBlanks = 16;
        const int blank = LINES >= rowsForBlanks ? 1 : 0;
        erase();
        drawRow(0, _title);
        drawRow(1, state(waitingSeconds) + ", " + dataAge());
        const int top = drawReading(2 + blank) + blank;
        const int end = LINES - 1;
        _strip.draw(top, drawFailure(top, end) - top);
        drawRow(end, "Press q or Ctrl-C to quit");
        refresh();
    }

private:
    std::string state(double waitingSeconds) const {
        if (waitingSeconds >= 1) {
            return tools::printed("No answer for %.0f s", std::floor(waitingSeconds));
        }
        if (_failure) {
            return _failure->isRefusal() ? "Refused by the engine" : "Waiting for the engine";
        }
        return _reading ? "Connected" : "Connecting";
    }

    std::string dataAge() const {
        if (!_reading) {
            return "no data yet";
        }
        const std::chrono::duration<double> age = tools::now() - _reading->time;
        return tools::printed("data %.1f s old", std::max(0.0, age.count()));
    }

    // Returns the row after the last one.
    int drawReading(int row) const {
        if (_reading) {
            const auto& timestamps = _reading->timestamps;
            const auto drawTime = [&](const char* label, unsigned long ntp) {
                drawRow(row++, label + tools::timeOfDay(fromNtp(ntp)));
            };
            drawTime("Captured        ", timestamps.audioCaptureTimestamp);
            drawTime("Received        ", timestamps.audioReceivingTimestamp);
            drawTime("Rendered        ", timestamps.audioRenderingTimestamp);
            drawRow(row++, tools::printed("Latency         %.1f ms from capture to rendering",
                                          _reading->latencyMs()));
            drawRow(row++, tools::printed("Jitter buffer   %lu ms", timestamps.jbmCurrentDepth));
        }
        drawRow(row++, _tally.counts());
        return row;
    }

    // Draws the text of the failure above the row `end`. Returns its first row. The figures, which
    // end above `top`, have priority.
    int drawFailure(int top, int end) const {
        if (!_failure || top >= end) {
            return end;
        }
        // A message may be very long. A character has up to four bytes.
        const int room = COLS * (end - top);
        const std::string start = std::string(_failure->what()).substr(0, 4 * std::size_t(room));
        const std::string text = tools::printable(start);
        const int rows = std::min(static_cast<int>(text.size()) / COLS + 1, end - top);
        mvaddnstr(end - rows, 0, text.c_str(), COLS * rows);
        return end - rows;
    }

    const std::string _title;
    std::mutex _mutex;
    std::optional<Reading> _reading; // The last one with figures.
    std::optional<Failure> _failure; // If it is newer.
    Tally& _tally;
    LatencyStrip _strip;
};

bool wantsToQuit() {
    constexpr int escape = 27;
    bool quits = false;
    for (int key = getch(); key != ERR; key = getch()) {
        quits = quits || key == 'q' || key == 'Q' || key == escape;
    }
    return quits;
}

// Reads in a thread of its own, so that a silent engine does not hold up the keys.
void show(const std::string& socket, Poller& poller, Tally& tally) {
    LiveView view(socket, tally);
    std::atomic<bool> isOver{false};
    std::thread reading([&] {
        poller.run([&](const Reading& result) { view.add(result); });
        isOver = true;
    });
    while (!isOver && !wantsToQuit()) {
        view.draw(poller.waitingSeconds());
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    poller.stop();
    reading.join();
}

// Whether standard output is a terminal on which a program can write anywhere.
bool hasMovableCursor() {
    int error = 0;
    if (isatty(STDOUT_FILENO) != 1 || setupterm(nullptr, STDOUT_FILENO, &error) != OK) {
        return false;
    }
    const bool isMovable = cursor_address != nullptr;
    del_curterm(cur_term);
    return isMovable;
}

} // namespace

bool watchOnTerminal(const Options& options, Poller& poller, Output& output) {
    if (!hasMovableCursor()) {
        return false;
    }
    if (options.showsLog && isatty(STDERR_FILENO) == 1) {
        // The log lines would overwrite the view.
        dropLog();
    }
    Tally tally;
    setInterruptHandler([&] { poller.stop(); });
    show(options.socket, poller, tally);
    setInterruptHandler(nullptr);
    output.print({}, tally.counts());
    output.print({}, tally.latency());
    return true;
}

} // namespace lipsyncctl
