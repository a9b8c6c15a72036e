#pragma once

#include <unistd.h>

#include <vector>

namespace tests {

/// Watches some system calls of this process; the functions of the C library are replaced in the
/// test programs.
struct SystemCalls {
    /// Forgets everything.
    static void reset();

    static std::vector<useconds_t> pauses; ///< Arguments of `usleep`, which does not sleep.
    static int shutdowns;                  ///< Calls of `shutdown`.
    static int errnoAfterClose;            ///< Set by `close`, unless 0.
};

/// Number of descriptors that this process has open.
int openDescriptors();

} // namespace tests
