#pragma once

#include <deque>
#include <string>

#include "tools/lipsyncctl/Reading.h"

namespace lipsyncctl {

/// Takes over the terminal and shows the timestamps, redrawn in place. While it lives, standard
/// error is kept off a terminal that it would spoil.
class LiveView {
public:
    /// Whether standard output is a terminal of a known kind.
    static bool isPossible();

    explicit LiveView(const std::string& socket);
    ~LiveView();

    LiveView(const LiveView&) = delete;
    LiveView& operator=(const LiveView&) = delete;

    void show(const Reading& reading);
    void showFailure(const std::string& failure);

    /// Draws anew after the terminal was resized, and says how old the last reading is. False if
    /// the user wants to leave.
    bool refresh();

    /// Gives the terminal back.
    void close();

private:
    struct Second {
        long time;
        double latencyMs;
    };

    void draw() const;
    std::string status() const;
    void drawTimestamps() const;
    void drawStrip() const;

    std::string _socket;
    Reading _reading;
    bool _hasReading = false;
    std::string _failure;
    std::deque<Second> _lastMinute;
    int _savedStandardError = -1;
    bool _isOpen = true;
};

} // namespace lipsyncctl
