#include "tools/lipsyncctl/Watch.h"

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <optional>

#include "tools/lipsyncctl/Interrupt.h"
#include "tools/lipsyncctl/Messages.h"
#include "tools/lipsyncctl/Output.h"
#include "tools/lipsyncctl/Poller.h"
#include "tools/lipsyncctl/TerminalWatch.h"
#include "tools/lipsyncctl/Time.h"

namespace lipsyncctl {

namespace {

std::string explained(const Failure& failure) {
    return (failure.isRefusal() ? "The engine refused the request: " : "Waiting for the engine: ") +
           failure.text;
}

void watchInLines(const Options& options, Output& output) {
    Poller poller(options);
    unsigned long readings = 0;
    std::string lastFailure;
    while (!isInterrupted() && !options.isEnough(readings) && std::cout.good()) {
        const std::optional<Poller::Event> event = poller.next(Poller::patience);
        if (!event || isInterrupted()) {
            continue;
        }
        if (event->reading) {
            output.print(event->reading->record(), event->reading->text());
            ++readings;
        } else if (event->failure.text != lastFailure) {
            complain(explained(event->failure));
            output.print(outageRecord(now(), event->failure));
        }
        lastFailure = event->failure.text;
    }
}

} // namespace

int watchTimestamps(const Options& options) {
    catchInterrupts();
    Output output(options.format);
    std::string summary;
    if (options.format == Format::Text && watchOnTerminal(options, summary)) {
        output.print({}, summary);
    } else {
        watchInLines(options, output);
    }
    return EXIT_SUCCESS;
}

} // namespace lipsyncctl
