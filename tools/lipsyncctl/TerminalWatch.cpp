#include "tools/lipsyncctl/TerminalWatch.h"

#include <ncurses.h>
#include <term.h>
#include <unistd.h>

#include <chrono>

#include "tools/lipsyncctl/Interrupt.h"
#include "tools/lipsyncctl/LiveView.h"
#include "tools/lipsyncctl/Messages.h"
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

// Passes on all events that have arrived, so that the view is not drawn for each of them.
void update(LiveView& view, Poller& poller, const Options& options) {
    auto event = poller.next(Poller::patience);
    while (event && !options.isEnough(view.summary().readings())) {
        if (event->reading) {
            view.add(*event->reading);
        } else {
            view.add(event->failure);
        }
        event = poller.next(std::chrono::milliseconds::zero());
    }
}

} // namespace

bool watchOnTerminal(const Options& options, std::string& summary) {
    if (!hasMovableCursor()) {
        return false;
    }
    if (options.showsLog && isatty(STDERR_FILENO) == 1) {
        // The log lines would overwrite the view.
        dropLog();
    }
    LiveView view(options.socket);
    Poller poller(options);
    while (!isInterrupted() && !options.isEnough(view.summary().readings()) &&
           view.refresh(poller.waitingTime())) {
        update(view, poller, options);
    }
    summary = view.summary().text();
    return true;
}

} // namespace lipsyncctl
