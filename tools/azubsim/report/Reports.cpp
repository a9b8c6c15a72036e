#include "tools/azubsim/report/Reports.h"

#include "tools/azubsim/report/Line.h"
#include "tools/common/Error.h"
#include "tools/common/Text.h"

namespace azubsim {

void Reports::add(const Exchange& exchange) {
    ++_exchanges;
    _spoiled += exchange.said.empty() ? 0 : 1;
    if (!isQuiet) {
        _screen.say(exchangeLine(exchange));
    }
    try {
        if (recorder) {
            recorder->add(exchange);
        }
    } catch (const tools::Error& e) {
        _failure = "the recording is not complete";
        _screen.warn(std::string(e.what()) + "; the recording ends here");
    }
}

std::string Reports::tally(int clients) const {
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - _start;
    return tools::printed("%lu exchanges, %lu spoiled, %d clients, %.1f s", _exchanges, _spoiled,
                          clients, passed.count());
}

} // namespace azubsim
