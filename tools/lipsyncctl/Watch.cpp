#include "tools/lipsyncctl/Watch.h"

#include <unistd.h>

#include <chrono>
#include <csignal>
#include <iostream>
#include <optional>

#include "tools/lipsyncctl/LiveView.h"
#include "tools/lipsyncctl/Messages.h"
#include "tools/lipsyncctl/Output.h"
#include "tools/lipsyncctl/Poller.h"
#include "tools/lipsyncctl/Time.h"

namespace lipsyncctl {

namespace {

constexpr std::chrono::milliseconds patience{100};

volatile std::sig_atomic_t isInterrupted = 0;

void interrupt(int) {
    isInterrupted = 1;
}

// Counts readings down; 0 means no limit.
class Countdown {
public:
    explicit Countdown(unsigned long count) : _left(count), _isEndless(count == 0) {}
    bool isOver() const { return !_isEndless && _left == 0; }
    void count() { --_left; }

private:
    unsigned long _left;
    bool _isEndless;
};

std::string explained(const Failure& failure) {
    return (failure.isRefusal() ? "The engine refused the request: " : "Waiting for the engine: ") +
           failure.text;
}

void watchOnTerminal(const Options& options) {
    if (options.showsLog && isatty(STDERR_FILENO) == 1) {
        // The log lines would overwrite the view.
        dropLog();
    }
    LiveView view(options.socket);
    Poller poller(options.socket, std::chrono::milliseconds(options.intervalMs));
    Countdown readings(options.readings);
    while (isInterrupted == 0 && !readings.isOver() && view.refresh()) {
        const std::optional<Poller::Event> event = poller.next(patience);
        if (!event) {
            continue;
        }
        if (event->reading) {
            view.show(*event->reading);
            readings.count();
        } else {
            view.showFailure(explained(event->failure));
        }
    }
}

void watchInLines(const Options& options) {
    Poller poller(options.socket, std::chrono::milliseconds(options.intervalMs));
    Output output(options.format);
    Countdown readings(options.readings);
    std::string lastFailure;
    while (isInterrupted == 0 && !readings.isOver() && std::cout.good()) {
        const std::optional<Poller::Event> event = poller.next(patience);
        if (!event) {
            continue;
        }
        if (event->reading) {
            output.print(event->reading->record(), event->reading->text());
            readings.count();
        } else if (event->failure.text != lastFailure) {
            complain(explained(event->failure));
            output.print(outageRecord(now(), event->failure));
        }
        lastFailure = event->failure.text;
    }
}

} // namespace

void watchTimestamps(const Options& options) {
    // No SA_RESTART: a signal interrupts blocking calls, for example a write to a full pipe.
    // SA_RESETHAND: a second signal ends the process at once.
    struct sigaction action {};
    action.sa_handler = interrupt;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    const bool hasTerminal = options.format == Format::Text && LiveView::isPossible();
    if (hasTerminal) {
        watchOnTerminal(options);
    } else {
        watchInLines(options);
    }
}

} // namespace lipsyncctl
