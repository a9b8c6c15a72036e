#pragma once

namespace tests {

/// What one thread takes from operator new, and which allocation fails. A program that links this
/// has operator new and delete replaced, also for the shared libraries that it uses.
struct Memory {
    int untilFailure = 0; ///< 1 if the next allocation is to fail, 0 if none is.
    bool hasFailed = false;
    long allocations = 0;
    long frees = 0;

    long blocks() const { return allocations - frees; }

    /// Makes the n-th allocation from now on fail; 0 for none.
    void fail(int n) {
        untilFailure = n;
        hasFailed = false;
    }
};

extern thread_local Memory memory;

} // namespace tests
