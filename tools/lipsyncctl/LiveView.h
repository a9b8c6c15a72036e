#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "tools/lipsyncctl/LatencyStrip.h"
#include "tools/lipsyncctl/Poller.h"
#include "tools/lipsyncctl/Tally.h"

namespace lipsyncctl {

/// Shows the timestamps full-screen on the terminal. The destructor restores the terminal.
class LiveView {
public:
    /// `tally` must outlive the view.
    LiveView(const std::string& socket, Tally& tally);
    ~LiveView();

    LiveView(const LiveView&) = delete;
    LiveView& operator=(const LiveView&) = delete;

    void add(const Poller::Event& event);

    /// Draws everything. `waitingTime` is how long the current call has been waiting. Returns false
    /// if the user wants to quit.
    bool refresh(std::chrono::duration<double> waitingTime);

private:
    std::string status(double waitingSeconds) const;
    int drawReading(int row) const;
    int drawFailure(int top, int end) const;

    const std::string _title;
    std::optional<Reading> _reading;
    std::optional<Failure> _failure;
    Tally& _tally;
    LatencyStrip _strip;
};

} // namespace lipsyncctl
