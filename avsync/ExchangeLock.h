#pragma once

#include <mutex>

namespace velta::zub::avsync {

/// The lock around every exchange with an engine, in this whole process: exchanges of two `Service`
/// objects must not overlap. Shared libraries that each contain this function share it if they are
/// linked in the usual way; if they are loaded with RTLD_LOCAL, they may not.
[[gnu::visibility("default")]] inline std::timed_mutex& exchangeLock() {
    // Never destroyed: a thread that was left behind may still use it at exit.
    static auto* const lock = new std::timed_mutex;
    return *lock;
}

} // namespace velta::zub::avsync
