#pragma once

#include <fcntl.h>
#include <unistd.h>

namespace tests {

/// Discards standard error, and so the library's log, while the object exists.
class Silence {
public:
    Silence() {
        close(STDERR_FILENO);
        // Gets the descriptor number that was just closed.
        open("/dev/null", O_WRONLY);
    }

    ~Silence() {
        dup2(_standardError, STDERR_FILENO);
        close(_standardError);
    }

    Silence(const Silence&) = delete;

private:
    const int _standardError = dup(STDERR_FILENO);
};

} // namespace tests
