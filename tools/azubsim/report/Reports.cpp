#include "tools/azubsim/report/Reports.h"

#include "tools/azubsim/report/Line.h"
#include "tools/common/Error.h"

namespace azubsim {

void Reports::add(const Exchange& exchange) {
    ++tally.exchanges;
    tally.spoiled += exchange.said.empty() ? 0 : 1;
    if (!isQuiet) {
        _screen.say(exchangeLine(exchange));
    }
    if (!recorder) {
        return;
    }
    try {
        recorder->add(exchange);
    } catch (const tools::Error& e) {
        _failure = "the recording is not complete";
        _screen.warn(std::string(e.what()) + "; the recording ends here");
    }
}

void Reports::finish() {
    if (recorder) {
        recorder->finish();
    }
    if (!_failure.empty()) {
        throw tools::Error(_failure);
    }
}

} // namespace azubsim
