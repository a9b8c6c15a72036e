#include "tests/replacements/Memory.h"

#include <cstdlib>
#include <new>

// Null without a sanitizer. NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" [[gnu::weak]] void __lsan_ignore_object(void* block);

namespace tests {

thread_local Memory memory;

} // namespace tests

using tests::memory;

// The other forms of new and delete call these.
void* operator new(std::size_t size) {
    const bool isWatched = memory.untilFailure > 0;
    if (isWatched && --memory.untilFailure == 0) {
        memory.hasFailed = true;
        throw std::bad_alloc();
    }
    void* const block = std::malloc(size);
    ++memory.allocations;
    // The test checks for leaks after a failure, so the leak checker must not.
    if (isWatched && __lsan_ignore_object != nullptr) {
        __lsan_ignore_object(block);
    }
    return block;
}

void operator delete(void* block) noexcept {
    memory.frees += block != nullptr ? 1 : 0;
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    operator delete(block);
}
