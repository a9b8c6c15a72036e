#pragma once

#include <unistd.h>

namespace azubsim {

/// True unless standard input is a terminal that another program is using now. Reading from such a
/// terminal, or changing its settings, would stop this process or disturb the other one.
inline bool isForeground() {
    const pid_t group = tcgetpgrp(STDIN_FILENO);
    return group < 0 || group == getpgrp();
}

} // namespace azubsim
