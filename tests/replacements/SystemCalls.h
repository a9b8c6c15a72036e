#pragma once

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tests {

/// The system calls of a connection's life.
enum class Call { Socket, Connect, Write, Read, Shutdown, Close };

/// What one thread calls of the C library, and which of these calls fail. The functions are
/// replaced in the test programs. Only calls on sockets count: the C library may use the same
/// functions for files of its own.
struct SystemCalls {
    Call failing = Call::Socket;
    int passing = 0;        ///< How many such calls succeed first.
    int failuresToCome = 0; ///< And how many fail then. `close` closes all the same.
    int error = 0;          ///< Their errno.
    std::size_t largestTransfer = SIZE_MAX; ///< What one `read` or `write` moves at most.
    bool hasFailed = false;
    int shutdowns = 0;
};

extern thread_local SystemCalls systemCalls;

/// Arguments of `usleep`, which does not sleep.
extern std::vector<useconds_t> pauses;

} // namespace tests
