#pragma once

#include <optional>

#include "tools/azubsim/Exchange.h"
#include "tools/azubsim/Recorder.h"
#include "tools/azubsim/Screen.h"
#include "tools/azubsim/Trace.h"

namespace azubsim {

/// Shows, records and traces exchanges.
class Reports {
public:
    explicit Reports(Screen& screen) : _screen(screen) {}

    Screen& screen() { return _screen; }

    bool printsLines = false; ///< A line per exchange on standard output.
    bool isVerbose = false;   ///< Each message on standard error.
    std::optional<Recorder> recorder;
    std::optional<Trace> trace;

    void add(const Exchange& exchange);

private:
    void show(int client, char direction, const std::string& message);

    Screen& _screen;
};

} // namespace azubsim
