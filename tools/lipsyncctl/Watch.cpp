#include "tools/lipsyncctl/Watch.h"

#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <optional>

#include "tools/lipsyncctl/Interrupt.h"
#include "tools/lipsyncctl/LiveView.h"
#include "tools/lipsyncctl/Messages.h"
#include "tools/lipsyncctl/Output.h"
#include "tools/lipsyncctl/Poller.h"
#include "tools/lipsyncctl/Summary.h"
#include "tools/lipsyncctl/Terminal.h"
#include "tools/lipsyncctl/Time.h"

namespace lipsyncctl {

namespace {

// How often the loops look for a signal or a key.
constexpr std::chrono::milliseconds patience{100};

bool isEnough(const Options& options, unsigned long readings) {
    return options.readings > 0 && readings >= options.readings;
}

std::string explained(const Failure& failure) {
    return (failure.isRefusal() ? "The engine refused the request: " : "Waiting for the engine: ") +
           failure.text;
}

// Passes on all events that have arrived, so that the view is not drawn for each of them.
void update(LiveView& view, Poller& poller, const Options& options) {
    auto event = poller.next(patience);
    while (event && !isEnough(options, view.summary().readings())) {
        if (event->reading) {
            view.add(*event->reading);
        } else {
            view.add(event->failure);
        }
        event = poller.next(std::chrono::milliseconds::zero());
    }
}

std::string watchOnTerminal(const Options& options) {
    if (options.showsLog && isatty(STDERR_FILENO) == 1) {
        // The log lines would overwrite the view.
        dropLog();
    }
    LiveView view(options.socket);
    Poller poller(options);
    while (!isInterrupted() && !isEnough(options, view.summary().readings()) &&
           view.refresh(poller.waitingTime())) {
        update(view, poller, options);
    }
    return view.summary().text();
}

void watchInLines(const Options& options, Output& output) {
    Poller poller(options);
    unsigned long readings = 0;
    std::string lastFailure;
    while (!isInterrupted() && !isEnough(options, readings) && std::cout.good()) {
        const std::optional<Poller::Event> event = poller.next(patience);
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
    if (options.format == Format::Text && hasMovableCursor()) {
        const std::string summary = watchOnTerminal(options);
        output.print({}, summary);
    } else {
        watchInLines(options, output);
    }
    return EXIT_SUCCESS;
}

} // namespace lipsyncctl
