#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "tools/azubsim/protocol/Exchange.h"
#include "tools/azubsim/report/Recording.h"
#include "tools/azubsim/report/Screen.h"

namespace azubsim {

/// One line for people, without a line feed: time of day, client, what was asked, the verdict, the
/// figures, how long the engine took, and the fault if there is one with what the engine had said.
std::string exchangeLine(const Exchange& exchange);

/// Counts, shows and records exchanges.
class Reports {
public:
    explicit Reports(Screen& screen) : _screen(screen) {}

    Screen& screen() { return _screen; }

    bool isQuiet = false; ///< No line per exchange.
    std::optional<Recorder> recorder;

    void add(const Exchange& exchange);

    /// What was counted since the start.
    std::string tally(int clients) const;

    /// Why the recording is not complete; empty if it is.
    const std::string& failure() const { return _failure; }

private:
    Screen& _screen;
    unsigned long _exchanges = 0;
    unsigned long _spoiled = 0; ///< Exchanges that got a fault.
    const std::chrono::steady_clock::time_point _start = std::chrono::steady_clock::now();
    std::string _failure;
};

} // namespace azubsim
