#include <unistd.h>

#include "tools/lipsyncctl/Messages.h"
#include "tools/lipsyncctl/TerminalWatch.h"

namespace lipsyncctl {

bool watchOnTerminal(const Options&, std::string&) {
    if (isatty(STDOUT_FILENO) == 1) {
        complain("there is no live view, because this program was built without ncurses");
    }
    return false;
}

} // namespace lipsyncctl
