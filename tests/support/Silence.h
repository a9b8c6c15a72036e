#pragma once

#include <fcntl.h>
#include <unistd.h>

namespace tests {

/// While it lives, standard error goes nowhere, and the library's log lines with it.
class Silence {
public:
    Silence() : _standardError(dup(STDERR_FILENO)) {
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(nowhere, STDERR_FILENO);
        close(nowhere);
    }

    ~Silence() {
        dup2(_standardError, STDERR_FILENO);
        close(_standardError);
    }

    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    int _standardError;
};

} // namespace tests
