#pragma once

namespace tests {

/// Counts one thread's allocations with operator new, and can make one fail. Linking this replaces
/// operator new and delete in the program and in the shared libraries that it uses.
struct Memory {
    int untilFailure = 0; ///< 1 if the next allocation must fail, 0 if none must.
    bool hasFailed = false;
    long allocations = 0;
    long frees = 0;

    long blocks() const { return allocations - frees; }

    /// Makes the n-th allocation from now on fail, or none if `n` is 0.
    void fail(int n) {
        untilFailure = n;
        hasFailed = false;
    }
};

extern thread_local Memory memory;

} // namespace tests
