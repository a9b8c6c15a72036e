#include "tools/lipsyncctl/TerminalWatch.h"

#include <ncurses.h>
#include <term.h>
#include <unistd.h>

#include <chrono>

#include "tools/lipsyncctl/Interrupt.h"
#include "tools/lipsyncctl/LiveView.h"
#include "tools/lipsyncctl/Log.h"
#include "tools/lipsyncctl/Poller.h"

namespace lipsyncctl {

namespace {

// Whether standard output is a terminal on which a program can write anywhere.
bool hasMovableCursor() {
    int error = 0;
    if (isatty(STDOUT_FILENO) != 1 || setupterm(nullptr, STDOUT_FILENO, &error) != OK) {
        return false;
    }
    const bool isMovable = cursor_address != nullptr;
    del_curterm(cur_term);
    return isMovable;
}

// Passes on the events of a moment, so that the view is not drawn for each of them.
void update(LiveView& view, Poller& poller, const Options& options, const Tally& tally) {
    const auto end = std::chrono::steady_clock::now() + Poller::patience;
    constexpr std::chrono::milliseconds none{0};
    for (auto event = poller.next(Poller::patience); event; event = poller.next(none)) {
        view.add(*event);
        if (options.isEnough(tally.readings()) || std::chrono::steady_clock::now() >= end) {
            return;
        }
    }
}

} // namespace

bool watchOnTerminal(const Options& options, Tally& tally) {
    if (!hasMovableCursor()) {
        return false;
    }
    if (options.showsLog && isatty(STDERR_FILENO) == 1) {
        // The log lines would overwrite the view.
        dropLog();
    }
    LiveView view(options.socket, tally);
    Poller poller(options);
    while (!isInterrupted() && !options.isEnough(tally.readings()) &&
           view.refresh(poller.waitingTime())) {
        update(view, poller, options, tally);
    }
    return true;
}

} // namespace lipsyncctl
