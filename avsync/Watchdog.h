#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace velta::zub::avsync {

/// Ends calls that take too long, such as exchanges with a silent engine.
///
/// One thread makes the calls, each in the scope of a `Deadline`. When its time has passed, a
/// thread of the watchdog calls `cancel`, and again every 10 ms until the scope ends: a signal that
/// arrives just before a system call blocks has no effect. `cancel` runs only while there is a
/// `Deadline`, and never during its constructor or destructor. So the calling thread may connect,
/// disconnect and destroy its object whenever it has no deadline.
///
///     Service service;
///     Watchdog watchdog([&] { service.cancel(); }); // After the object that it cancels.
///     {
///         const Watchdog::Deadline deadline(watchdog, Watchdog::Clock::now() + 500ms);
///         result = service.getAudioTimestamps(timestamps);
///     }
///     // Whatever the result says:
///     if (watchdog.ending() == Watchdog::Ending::Limit) reconnect();
///
/// Costs a thread that sleeps while the calls are in time. Starting it throws what `std::thread`
/// throws.
class Watchdog {
public:
    using Clock = std::chrono::steady_clock; ///< The clock of its limits.
    using Time = Clock::time_point;          ///< The time at which a call must be over.

    /// A deadline for calls without a limit. Only `stop` ends them.
    static constexpr Time never = Time::max();

    /// How a call ended: by itself, or cancelled because of its limit or of `stop`.
    enum class Ending { Itself, Limit, Stop };

    /// `cancel` must neither block nor throw, and must not use the watchdog.
    explicit Watchdog(std::function<void()> cancel)
        : _cancel(std::move(cancel)), _thread([this] { watch(); }) {}

    /// There must be no `Deadline`. Waits for the thread, which ends at once.
    ~Watchdog() {
        {
            const std::lock_guard<std::mutex> lock(_mutex);
            _isEnding = true;
        }
        _changed.notify_one();
        _thread.join();
    }

    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    /// The time limit of one call. At most one exists at a time.
    class Deadline {
    public:
        /// A time that has passed cancels the call at once.
        Deadline(Watchdog& watchdog, Time time) : _watchdog(watchdog) { watchdog.begin(time); }
        ~Deadline() { _watchdog.end(); }

        Deadline(const Deadline&) = delete;
        Deadline& operator=(const Deadline&) = delete;

    private:
        Watchdog& _watchdog;
    };

    /// Cancels the current call now, and every later one as soon as it begins. Any thread; does not
    /// block.
    void stop() {
        {
            const std::lock_guard<std::mutex> lock(_mutex);
            _isStopped = true;
            if (_deadline) {
                _deadline = Time::min();
            }
        }
        _changed.notify_one();
    }

    /// How the last call ended. A call that was cancelled may have succeeded at the last moment,
    /// but its connection is closed. Any thread.
    Ending ending() const {
        const std::lock_guard<std::mutex> lock(_mutex);
        return _ending;
    }

private:
    static constexpr std::chrono::milliseconds repetition{10};

    // Calls may take microseconds, so they wake the thread only if it would sleep too long.
    void begin(Time time) {
        bool isSooner = false;
        {
            const std::lock_guard<std::mutex> lock(_mutex);
            _ending = Ending::Itself;
            _deadline = _isStopped ? Time::min() : time;
            isSooner = *_deadline < _wakeUp;
        }
        if (isSooner) {
            _changed.notify_one();
        }
    }

    void end() {
        const std::lock_guard<std::mutex> lock(_mutex);
        _deadline.reset();
    }

    void watch() {
        std::unique_lock<std::mutex> lock(_mutex);
        while (!_isEnding) {
            _wakeUp = _deadline.value_or(never);
            if (_wakeUp <= Clock::now()) {
                // The lock is held, so the call cannot end and its object cannot go away.
                cancel();
                _wakeUp = Clock::now() + repetition;
            }
            if (_wakeUp == never) {
                _changed.wait(lock);
            } else {
                _changed.wait_until(lock, _wakeUp);
            }
        }
    }

    void cancel() {
        if (_ending == Ending::Itself) {
            _ending = _isStopped ? Ending::Stop : Ending::Limit;
        }
        _cancel();
    }

    mutable std::mutex _mutex;
    std::condition_variable _changed;
    std::function<void()> _cancel;
    std::optional<Time> _deadline; // Of the current call.
    Time _wakeUp = never;          // When the thread will look again.
    Ending _ending = Ending::Itself;
    bool _isStopped = false;
    bool _isEnding = false;
    std::thread _thread; // Last: it uses the others.
};

} // namespace velta::zub::avsync
