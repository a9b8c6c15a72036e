#include <unistd.h>

#include "tools/common/Tool.h"
#include "tools/lipsyncctl/watch/LiveView.h"

namespace lipsyncctl {

bool watchOnTerminal(const Options&, Poller&, Output&) {
    if (isatty(STDOUT_FILENO) == 1) {
        tools::complain("there is no live view, because this program was built without ncurses");
    }
    return false;
}

} // namespace lipsyncctl
