#pragma once

#include <cstddef>

namespace tests {

/// While it lives, counts the blocks that this thread takes from operator new, and can make one
/// allocation fail. All forms of new and delete but the aligned ones are replaced in a program
/// that links this; a shared library, and what the standard library does for it, take theirs
/// from there as well. One at a time; a counted block is freed by the thread that allocated it.
class MemoryWatch {
public:
    /// The n-th allocation from now on fails, 0 for none.
    explicit MemoryWatch(int failing = 0);
    ~MemoryWatch();

    MemoryWatch(const MemoryWatch&) = delete;
    MemoryWatch& operator=(const MemoryWatch&) = delete;

    /// Whether the last watch has made an allocation fail.
    static bool hasFailed();

    /// Of all watches of this thread. Counted blocks count when they are freed, be it later.
    struct Usage {
        long allocations = 0;
        long frees = 0;
        std::size_t bytes = 0; ///< Not freed yet.

        long blocks() const { return allocations - frees; } ///< Not freed yet.
    };
    static Usage usage();
};

} // namespace tests
