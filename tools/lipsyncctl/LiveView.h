#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "tools/lipsyncctl/Failure.h"
#include "tools/lipsyncctl/LatencyStrip.h"
#include "tools/lipsyncctl/Reading.h"
#include "tools/lipsyncctl/Summary.h"

namespace lipsyncctl {

/// Shows the timestamps full-screen on the terminal. The destructor restores the terminal.
class LiveView {
public:
    explicit LiveView(const std::string& socket);
    ~LiveView();

    LiveView(const LiveView&) = delete;
    LiveView& operator=(const LiveView&) = delete;

    void add(const Reading& reading);
    void add(const Failure& failure);
    const Summary& summary() const { return _summary; }

    /// Draws everything. `waitingTime` is how long the current call has been waiting. Returns false
    /// if the user wants to quit.
    bool refresh(std::chrono::duration<double> waitingTime);

private:
    std::string status(double waitingSeconds) const;
    int drawReading(int row) const;
    int failureRows(int available) const;

    const std::string _title;
    std::optional<Reading> _reading;
    std::optional<Failure> _failure;
    Summary _summary;
    LatencyStrip _strip;
};

} // namespace lipsyncctl
