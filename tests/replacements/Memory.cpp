#include "tests/replacements/Memory.h"

#include <cstdlib>
#include <new>

// Only there under a sanitizer. NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" [[gnu::weak]] void __lsan_ignore_object(const void* block);

namespace tests {

namespace {

// Stands in front of every block.
struct alignas(std::max_align_t) Header {
    std::size_t size;
    bool isCounted;
};

struct State {
    bool isWatching = false;
    int untilFailure = 0;
    bool hasFailed = false;
    MemoryWatch::Usage usage;
};

thread_local State state;

void count(Header* header) {
    header->isCounted = true;
    ++state.usage.allocations;
    state.usage.bytes += header->size;
    // What is lost of these is the test's to judge, not the leak checker's.
    if (__lsan_ignore_object != nullptr) {
        __lsan_ignore_object(header);
    }
}

void* allocateOrNull(std::size_t size) noexcept {
    if (state.isWatching && state.untilFailure > 0 && --state.untilFailure == 0) {
        state.hasFailed = true;
        return nullptr;
    }
    auto* const header = static_cast<Header*>(std::malloc(sizeof(Header) + size));
    if (header == nullptr) {
        return nullptr;
    }
    *header = {size, false};
    if (state.isWatching) {
        count(header);
    }
    return header + 1;
}

void* allocate(std::size_t size) {
    void* const block = allocateOrNull(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void release(void* block) noexcept {
    if (block == nullptr) {
        return;
    }
    Header* const header = static_cast<Header*>(block) - 1;
    if (header->isCounted) {
        ++state.usage.frees;
        state.usage.bytes -= header->size;
    }
    std::free(header);
}

} // namespace

MemoryWatch::MemoryWatch(int failing) {
    state.isWatching = true;
    state.untilFailure = failing;
    state.hasFailed = false;
}

MemoryWatch::~MemoryWatch() {
    state.isWatching = false;
}

bool MemoryWatch::hasFailed() {
    return state.hasFailed;
}

MemoryWatch::Usage MemoryWatch::usage() {
    return state.usage;
}

} // namespace tests

// clang-format off
void* operator new(std::size_t size) { return tests::allocate(size); }
void* operator new[](std::size_t size) { return tests::allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return tests::allocateOrNull(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return tests::allocateOrNull(size); }
void operator delete(void* block) noexcept { tests::release(block); }
void operator delete[](void* block) noexcept { tests::release(block); }
void operator delete(void* block, std::size_t) noexcept { tests::release(block); }
void operator delete[](void* block, std::size_t) noexcept { tests::release(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { tests::release(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { tests::release(block); }
// clang-format on
