#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace velta::zub::avsync {

/// A mutex for `std::lock_guard` and `std::unique_lock`, also with a time limit. Unlike
/// `std::timed_mutex` it is understood by all versions of ThreadSanitizer.
class ExchangeMutex {
public:
    /// Blocks until it is unlocked.
    void lock() {
        std::unique_lock<std::mutex> lock(_mutex);
        _unlocked.wait(lock, [this] { return !_isLocked; });
        _isLocked = true;
    }

    /// Returns false if it is still locked at this time.
    bool try_lock_until(std::chrono::steady_clock::time_point time) {
        std::unique_lock<std::mutex> lock(_mutex);
        if (!_unlocked.wait_until(lock, time, [this] { return !_isLocked; })) {
            return false;
        }
        _isLocked = true;
        return true;
    }

    /// Lets the next one lock it.
    void unlock() {
        {
            const std::lock_guard<std::mutex> lock(_mutex);
            _isLocked = false;
        }
        _unlocked.notify_one();
    }

private:
    std::mutex _mutex;
    std::condition_variable _unlocked;
    bool _isLocked = false;
};

/// The lock around every exchange with an engine, in this whole process: exchanges of two `Service`
/// objects must not overlap. Shared libraries that each contain this function share it if they are
/// linked in the usual way; if they are loaded with RTLD_LOCAL, they may not.
[[gnu::visibility("default")]] inline ExchangeMutex& exchangeLock() {
    // Never destroyed: a thread that was left behind may still use it at exit.
    static auto* const lock = new ExchangeMutex;
    return *lock;
}

} // namespace velta::zub::avsync
