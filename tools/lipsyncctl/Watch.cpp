#include "tools/lipsyncctl/Watch.h"

#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <optional>

#include "tools/lipsyncctl/LiveView.h"
#include "tools/lipsyncctl/Output.h"
#include "tools/lipsyncctl/Poller.h"

namespace lipsyncctl {

namespace {

constexpr std::chrono::milliseconds patience{100};

volatile std::sig_atomic_t isInterrupted = 0;

void interrupt(int) {
    isInterrupted = 1;
}

// Counts readings up to the end that the options set.
class Countdown {
public:
    explicit Countdown(unsigned int count) : _left(count), _isEndless(count == 0) {}
    bool isOver() const { return !_isEndless && _left == 0; }
    void count() { --_left; }

private:
    unsigned int _left;
    bool _isEndless;
};

// Both return whether the poller could be stopped.
bool watchOnTerminal(Poller& poller, const Options& options) {
    LiveView view(options.socket);
    Countdown readings(options.count);
    while (isInterrupted == 0 && !readings.isOver() && view.refresh()) {
        const std::optional<Poller::Event> event = poller.next(patience);
        if (!event) {
            continue;
        }
        if (event->reading) {
            view.show(*event->reading);
            readings.count();
        } else {
            view.showFailure(event->failure);
        }
    }
    // While the view still keeps the last log line off the terminal.
    return poller.stop();
}

bool watchInLines(Poller& poller, const Options& options) {
    Output output(options.format);
    Countdown readings(options.count);
    std::string lastFailure;
    while (isInterrupted == 0 && !readings.isOver() && std::cout.good()) {
        const std::optional<Poller::Event> event = poller.next(patience);
        if (!event) {
            continue;
        }
        if (event->reading) {
            output.print(event->reading->record(), event->reading->text());
            readings.count();
        } else if (event->failure != lastFailure) {
            std::cerr << "lipsyncctl: waiting for the engine: " << event->failure << std::endl;
        }
        lastFailure = event->failure;
    }
    return poller.stop();
}

} // namespace

int watchTimestamps(const Options& options) {
    std::signal(SIGINT, interrupt);
    std::signal(SIGTERM, interrupt);
    Poller poller(options.socket, std::chrono::milliseconds(options.intervalMs));
    const bool hasTerminal = options.format == Format::Text && isatty(STDOUT_FILENO) == 1;
    if (!(hasTerminal ? watchOnTerminal(poller, options) : watchInLines(poller, options))) {
        std::cout.flush();
        std::_Exit(EXIT_SUCCESS);
    }
    return EXIT_SUCCESS;
}

} // namespace lipsyncctl
