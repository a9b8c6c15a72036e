#include "tools/lipsyncctl/Terminal.h"

#include <ncurses.h>
#include <term.h>
#include <unistd.h>

namespace lipsyncctl {

bool hasMovableCursor() {
    int error = 0;
    if (isatty(STDOUT_FILENO) != 1 || setupterm(nullptr, STDOUT_FILENO, &error) != OK) {
        return false;
    }
    const bool isMovable = cursor_address != nullptr;
    del_curterm(cur_term);
    return isMovable;
}

} // namespace lipsyncctl
