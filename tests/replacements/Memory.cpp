#include "tests/replacements/Memory.h"

#include <cstdlib>
#include <new>

// Only there under a sanitizer. NOLINTNEXTLINE(bugprone-reserved-identifier)
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
    // Whether a block is lost after a failure is for the test to say, and not for the leak checker.
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
