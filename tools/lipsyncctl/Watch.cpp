#include "tools/lipsyncctl/Watch.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <variant>

#include "tools/common/Text.h"
#include "tools/common/Tool.h"
#include "tools/lipsyncctl/Interrupt.h"
#include "tools/lipsyncctl/Poller.h"
#include "tools/lipsyncctl/Tally.h"
#include "tools/lipsyncctl/TerminalWatch.h"

namespace lipsyncctl {

namespace {

void explain(const Failure& failure) {
    const EndsAtOnce guard;
    const bool isRefusal = failure.isRefusal();
    tools::complain((isRefusal ? "The engine refused the request: " : "Waiting for the engine: ") +
                    std::string(failure.what()));
}

void watchInLines(const Options& options, Output& output, Tally& tally) {
    Poller poller(options);
    std::string lastFailure;
    while (!isInterrupted() && !options.isEnough(tally.readings())) {
        const auto event = poller.next(Poller::patience);
        if (!event || isInterrupted()) {
            continue;
        }
        tally.add(*event);
        if (const auto* const reading = std::get_if<Reading>(&*event)) {
            output.print(reading->record(), reading->text());
            lastFailure.clear();
            continue;
        }
        const auto& failure = std::get<Failure>(*event);
        if (failure.what() != lastFailure) {
            explain(failure);
            output.print(outageRecord(failure), "");
            lastFailure = failure.what();
        }
    }
}

} // namespace

void watchTimestamps(const Options& options, Output& output) {
    catchInterrupts();
    alarm(options.maxSeconds);
    Tally tally;
    if (options.format == Format::Text && watchOnTerminal(options, tally)) {
        output.print({}, tally.counts());
        output.print({}, tally.latency());
    } else {
        watchInLines(options, output, tally);
    }
    if (isTimeUp() && tally.readings() < std::max(options.readings, 1ul)) {
        throw Failure::timeout(
            tools::printed("%lu readings within %u s", tally.readings(), options.maxSeconds));
    }
}

} // namespace lipsyncctl
