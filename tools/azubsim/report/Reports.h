#pragma once

#include <optional>

#include "tools/azubsim/protocol/Exchange.h"
#include "tools/azubsim/report/Recorder.h"
#include "tools/azubsim/report/Screen.h"
#include "tools/azubsim/report/Tally.h"

namespace azubsim {

/// Counts, shows and records exchanges.
class Reports {
public:
    explicit Reports(Screen& screen) : _screen(screen) {}

    Screen& screen() { return _screen; }

    bool isQuiet = false; ///< No line per exchange.
    std::optional<Recorder> recorder;
    Tally tally;

    void add(const Exchange& exchange);

    /// Completes the recording. Throws a `tools::Error` if it is not complete.
    void finish();

private:
    Screen& _screen;
    std::string _failure; ///< Why the recording is not complete.
};

} // namespace azubsim
