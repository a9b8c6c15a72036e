#pragma once

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tests {

/// The functions of the C library that a connection uses.
enum class Call { ParseAddress, Socket, Connect, Write, Read, Shutdown, Close };

/// Makes such calls of one thread fail. The test programs replace these functions. Calls on
/// descriptors other than sockets do not count, because the C library may use the same functions
/// for its own files.
struct SystemCalls {
    Call failing = Call::Socket;
    int passing = 0;                        ///< How many such calls succeed first.
    int failuresToCome = 0;                 ///< How many fail after that. `close` still closes.
    int error = 0;                          ///< The errno of a failure.
    std::size_t largestTransfer = SIZE_MAX; ///< Limit of one `read` or `write`.
    bool hasFailed = false;
    int shutdowns = 0;
};

extern thread_local SystemCalls systemCalls;

/// The arguments of all calls to `usleep`, which is replaced and does not sleep.
extern std::vector<useconds_t> pauses;

} // namespace tests
