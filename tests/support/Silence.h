#pragma once

#include <fcntl.h>
#include <unistd.h>

namespace tests {

/// While it lives, standard error goes nowhere, and the library's log lines with it.
class Silence {
public:
    Silence() {
        close(STDERR_FILENO);
        // Takes the number that has become free.
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
