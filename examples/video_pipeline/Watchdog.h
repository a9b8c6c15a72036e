#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace video {

/// Cancels an exchange that takes too long.
///
/// One thread makes the exchanges, each in the scope of a `Deadline`. `cancel` runs in a thread of
/// the watchdog, only while there is a deadline, and never at the same time as the constructor or
/// destructor of a `Deadline`. So the thread may connect, disconnect and destroy its object at any
/// time when it has no deadline.
class Watchdog {
public:
    Watchdog(std::chrono::milliseconds limit, std::function<void()> cancel)
        : _limit(limit), _cancel(std::move(cancel)), _thread([this] { watch(); }) {}

    ~Watchdog() {
        change([this] { _isEnding = true; });
        _thread.join();
    }

    /// The time limit of one exchange.
    class Deadline {
    public:
        explicit Deadline(Watchdog& watchdog) : _watchdog(watchdog) {
            watchdog.change([&] {
                watchdog._hasCancelled = false;
                watchdog._deadline = Clock::now() + watchdog._limit;
            });
        }
        ~Deadline() {
            _watchdog.change([this] { _watchdog._deadline.reset(); });
        }
        Deadline(const Deadline&) = delete;

    private:
        Watchdog& _watchdog;
    };

    /// Cancels the current exchange now, and every later one as soon as it begins. Any thread.
    void cutShort() {
        change([this] {
            _limit = _limit.zero();
            _deadline = _deadline ? std::optional(Clock::now()) : std::nullopt;
        });
    }

    /// True if the current or the last exchange was cancelled.
    bool hasCancelled() const {
        const std::lock_guard lock(_mutex);
        return _hasCancelled;
    }

private:
    using Clock = std::chrono::steady_clock;

    template <typename Change>
    void change(const Change& make) {
        {
            const std::lock_guard lock(_mutex);
            make();
        }
        _changed.notify_one();
    }

    void watch() {
        std::unique_lock lock(_mutex);
        while (!_isEnding) {
            // A copy, because the deadline can change during the wait.
            const auto deadline = _deadline;
            if (!deadline) {
                _changed.wait(lock);
            } else if (Clock::now() < *deadline) {
                _changed.wait_until(lock, *deadline);
            } else {
                // The lock is held, so the exchange cannot end and the object cannot go away.
                _cancel();
                _hasCancelled = true;
                _deadline.reset();
            }
        }
    }

    mutable std::mutex _mutex;
    std::condition_variable _changed;
    std::chrono::milliseconds _limit;
    std::optional<Clock::time_point> _deadline;
    std::function<void()> _cancel;
    bool _hasCancelled = false;
    bool _isEnding = false;
    std::thread _thread; // Last: it uses the others.
};

} // namespace video
