#pragma once

#include <unistd.h>

#include <cstddef>
#include <vector>

namespace tests {

/// The system calls of a connection's life.
enum class Call { Socket, Connect, Write, Read, Shutdown, Close };

/// Watches some functions of the C library, which are replaced in the test programs, and makes them
/// fail. Only calls on sockets count: the C library may call the same functions for its own files.
/// All but the pauses is kept apart for each thread, so that an engine's thread is not disturbed.
struct SystemCalls {
    /// Forgets everything.
    static void reset();

    /// Calls of this thread.
    static int count(Call call);

    /// Makes the n-th such call from now on fail, and the `times - 1` after it. A call that fails
    /// does nothing, except that `close` closes all the same. There is one such plan at a time.
    static void fail(Call call, int n, int error, int times = 1);

    /// Calls that were made to fail.
    static int failures();

    /// Lets one `read` or `write` move this many bytes at most.
    static void limitTransfers(std::size_t largest);

    static std::vector<useconds_t> pauses; ///< Arguments of `usleep`, which does not sleep.
};

} // namespace tests
