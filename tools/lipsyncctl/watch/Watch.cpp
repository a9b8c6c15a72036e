#include <unistd.h>

#include <algorithm>
#include <string>

#include "tools/common/Text.h"
#include "tools/common/Tool.h"
#include "tools/lipsyncctl/Commands.h"
#include "tools/lipsyncctl/watch/LiveView.h"

namespace lipsyncctl {

namespace {

void watchInLines(Poller& poller, Output& output) {
    std::string lastFailure;
    poller.run([&](const Reading& reading) {
        const std::string failure = reading.failure ? reading.failure->what() : "";
        if (!reading.failure) {
            output.print(reading.record(), reading.text());
        } else if (failure != lastFailure) {
            tools::complain((reading.failure->isRefusal() ? "The engine refused the request: "
                                                          : "Waiting for the engine: ") +
                            failure);
            output.print(reading.record(), "");
        }
        lastFailure = failure;
    });
}

} // namespace

void watchTimestamps(const Options& options, Output& output) {
    Poller poller(options);
    if (options.maxSeconds > 0) {
        // Only output that nobody reads lasts longer.
        alarm(options.maxSeconds + 1);
    }
    if (options.format != Format::Text || !watchOnTerminal(options, poller, output)) {
        watchInLines(poller, output);
    }
    if (poller.isTimeUp() && poller.count() < std::max(options.readings, 1ul)) {
        throw Failure::timeout(
            tools::printed("%lu readings within %u s", poller.count(), options.maxSeconds));
    }
}

} // namespace lipsyncctl
