#pragma once

#include <unistd.h>

#include <cstddef>
#include <vector>

namespace tests {

/// The system calls of a connection's life.
enum class Call { Socket, Connect, Write, Read, Shutdown, Close };

/// Watches some system calls, and makes them fail; the functions of the C library are replaced in
/// the test programs. All but the pauses is kept apart for each thread, so that what an engine's
/// thread does is neither counted nor disturbed.
struct SystemCalls {
    /// Forgets everything.
    static void reset();

    /// Calls of this thread.
    static int count(Call call);

    /// Makes the n-th such call from now on fail, and so many in a row. A call that fails does
    /// nothing, except that `close` closes all the same. There is one such plan at a time.
    static void fail(Call call, int n, int error, int times = 1);

    /// Calls that were made to fail.
    static int failures();

    /// Lets one `read` or `write` move so many bytes at most.
    static void limitTransfers(std::size_t largest);

    static std::vector<useconds_t> pauses; ///< Arguments of `usleep`, which does not sleep.
};

/// Number of descriptors that this process has open.
int openDescriptors();

} // namespace tests
