#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "avsync/LipSyncTypes.h"

namespace velta::zub::avsync::details {

/// A picture that has been shown.
struct ShownPicture {
    std::chrono::steady_clock::time_point told; ///< When the caller told about it.
    double latencyMs = 0;
    double heldBackMs = 0;
};

/// What a `LipSync` and its thread tell each other.
class SyncState {
public:
    using Clock = std::chrono::steady_clock;
    using Time = Clock::time_point;

    explicit SyncState(std::chrono::milliseconds deadline) : _deadline(deadline) {}

    // For the caller's threads.

    void setPicture(double latencyMs, double heldBackMs) {
        // The thread holds the lock only to copy, and the next picture comes soon.
        const std::unique_lock<std::mutex> lock(_pictureMutex, std::try_to_lock);
        if (lock.owns_lock()) {
            _picture = ShownPicture{Clock::now(), latencyMs, heldBackMs};
        }
    }

    double pictureDelayMs() const { return _pictureDelayMs; }

    LipSyncStatus status() const {
        const std::lock_guard<std::mutex> lock(_mutex);
        LipSyncStatus status = _status;
        if (_connecting && Clock::now() - *_connecting >= _deadline && !isStoppedLocked()) {
            status.message = "no connection within " + std::to_string(_deadline.count()) + " ms";
        }
        return status;
    }

    void stop() {
        {
            const std::lock_guard<std::mutex> lock(_mutex);
            if (isStoppedLocked()) {
                return;
            }
            _end = Clock::now() + _deadline;
            _status.isConnected = _status.isSteered = false;
            _status.message = "Stopped";
        }
        _changed.notify_all();
    }

    /// Whether this thread is in `onReading`.
    bool isCalling(std::thread::id thread) const {
        const std::lock_guard<std::mutex> lock(_mutex);
        return _caller == thread;
    }

    /// Call it after `stop`. Returns false if the thread takes too long.
    bool waitForEnd() {
        constexpr std::chrono::milliseconds patience(250);
        std::unique_lock<std::mutex> lock(_mutex);
        _changed.wait_until(lock, _end + patience, [this] { return _hasEnded; });
        _changed.wait(lock, [this] { return _hasEnded || _caller == std::thread::id(); });
        return _hasEnded;
    }

    // For the thread.

    /// The time when an exchange that begins now must be over.
    Time limit() const {
        const std::lock_guard<std::mutex> lock(_mutex);
        return std::min(Clock::now() + _deadline, _end);
    }

    bool isStopped() const {
        const std::lock_guard<std::mutex> lock(_mutex);
        return isStoppedLocked();
    }

    /// Returns false as soon as the thread must end.
    bool sleepUntil(Time time) {
        std::unique_lock<std::mutex> lock(_mutex);
        return !_changed.wait_until(lock, time, [this] { return isStoppedLocked(); });
    }

    std::optional<ShownPicture> picture() const {
        const std::lock_guard<std::mutex> lock(_pictureMutex);
        return _picture;
    }

    void setPictureDelay(double ms) { _pictureDelayMs = ms; }

    void setConnecting(bool isConnecting) {
        const std::lock_guard<std::mutex> lock(_mutex);
        _connecting = isConnecting ? std::optional<Time>(Clock::now()) : std::nullopt;
    }

    void publish(const LipSyncStatus& status,
                 const std::function<void(const LipSyncStatus&)>& onReading) {
        {
            const std::lock_guard<std::mutex> lock(_mutex);
            if (isStoppedLocked()) {
                return;
            }
            _status = status;
            _caller = std::this_thread::get_id();
        }
        if (onReading) {
            onReading(status);
        }
        const std::lock_guard<std::mutex> lock(_mutex);
        _caller = std::thread::id();
        _changed.notify_all();
    }

    /// The last thing that the thread does.
    void end(unsigned long marginMs) {
        const std::lock_guard<std::mutex> lock(_mutex);
        _status.marginMs = marginMs;
        _hasEnded = true;
        _changed.notify_all();
    }

private:
    bool isStoppedLocked() const { return _end != Time::max(); }

    const std::chrono::milliseconds _deadline;
    std::atomic<double> _pictureDelayMs{0};
    mutable std::mutex _pictureMutex;
    std::optional<ShownPicture> _picture;
    mutable std::mutex _mutex; // For what follows.
    std::condition_variable _changed;
    LipSyncStatus _status;
    std::optional<Time> _connecting; // Since when.
    Time _end = Time::max();         // Of the last exchange, once stopped.
    std::thread::id _caller;         // Of `onReading`.
    bool _hasEnded = false;
};

} // namespace velta::zub::avsync::details
