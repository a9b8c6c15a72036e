#pragma once

#include <deque>
#include <string>

#include "tools/lipsyncctl/Reading.h"

namespace lipsyncctl {

/// Shows the timestamps full-screen on the terminal. The destructor restores the terminal.
class LiveView {
public:
    /// Whether standard output is a terminal of a known type.
    static bool isPossible();

    explicit LiveView(const std::string& socket);
    ~LiveView();

    LiveView(const LiveView&) = delete;
    LiveView& operator=(const LiveView&) = delete;

    void show(const Reading& reading);
    void showFailure(const std::string& failure);

    /// Redraws, in case the terminal was resized, and updates the age of the last reading. Returns
    /// false if the user wants to quit.
    bool refresh();

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
};

} // namespace lipsyncctl
