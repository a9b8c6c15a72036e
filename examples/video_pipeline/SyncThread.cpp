#include "SyncThread.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace video {

SyncThread::SyncThread(std::string socket, std::chrono::milliseconds deadline)
    : _socket(std::move(socket)),
      _deadline(deadline),
      _watchdog(deadline, [this] { _service.cancel(); }),
      _thread([this] { run(); }) {}

void SyncThread::stop() {
    {
        const std::lock_guard lock(_mutex);
        _isStopped = true;
    }
    _stopping.notify_one();
    _watchdog.cutShort();
    if (_thread.joinable()) {
        _thread.join();
    }
}

void SyncThread::run() {
    do {
        if (connect()) {
            readUntilFailure();
        }
        _service.disconnect();
        // Each pause is twice as long as the last one, until the engine gives a usable reading.
    } while (sleepUntil(Clock::now() + std::exchange(_pause, std::min(2 * _pause, longestPause))));
}

// The engine may have been restarted without its margin, so sets that too.
bool SyncThread::connect() {
    _steering.restart();
    const auto connected = _service.connect(_socket);
    if (!connected.isSuccess()) {
        report("Waiting for the engine: " + connected.format());
    }
    return connected.isSuccess() && setMargin();
}

void SyncThread::readUntilFailure() {
    constexpr std::chrono::milliseconds interval(100);
    auto next = Clock::now() + interval;
    while (read() && sleepUntil(next)) {
        // After a slow answer, skip the missed readings.
        next = std::max(next + interval, Clock::now());
    }
}

// Returns false if the connection is no longer of use.
bool SyncThread::read() {
    Reading reading;
    if (!succeeds([&] { return _service.getAudioTimestamps(reading.audio); })) {
        return false;
    }
    reading.setTaken(_reading.get());
    reading.marginMs = _steering.marginMs();
    bool isConnected = true;
    if (reading.isUsable(Clock::now())) {
        _pause = shortestPause;
        report("Connected to " + _socket);
        const auto picture = _picture.get();
        isConnected = !picture || steer(reading, *picture);
    } else if (!reading.isFrozen) {
        // After an answer too many, each answer belongs to an earlier request.
        report("Waiting for the engine: its answers are late");
        isConnected = false;
    }
    reading.isSteered = _steering.isSettled();
    reading.pictureDelayMs = _steering.pictureDelayMs();
    _reading.set(reading);
    return isConnected;
}

bool SyncThread::steer(const Reading& reading, const Picture& picture) {
    Reading::Timestamps shown;
    shown.audioCaptureTimestamp = picture.captured;
    shown.audioRenderingTimestamp = picture.shown;
    _service.setVideoTimestamps(shown);
    const double pictureMs = picture.latenessMs() - picture.delayMs;
    const double skewMs = reading.latenessWithoutMarginMs() - pictureMs;
    const bool isChanged = _steering.update(Clock::now(), skewMs);
    return !isChanged || _steering.marginMs() == reading.marginMs || setMargin();
}

bool SyncThread::setMargin() {
    return succeeds([this] { return _service.setAudioDelayMargin(_steering.marginMs()); });
}

template <typename Exchange>
bool SyncThread::succeeds(const Exchange& exchange) {
    const auto result = [&] {
        const Watchdog::Deadline deadline(_watchdog);
        return exchange();
    }();
    if (!result.isSuccess()) {
        const std::string late = "no answer within " + std::to_string(_deadline.count()) + " ms";
        report("Waiting for the engine: " + (_watchdog.hasCancelled() ? late : result.format()));
    }
    return result.isSuccess();
}

// Prints a state only when it changes.
void SyncThread::report(const std::string& state) {
    if (state != _state && !_isStopped) {
        _state = state;
        std::printf("%s\n", state.c_str());
        std::fflush(stdout);
    }
}

// Returns false as soon as the thread must end.
bool SyncThread::sleepUntil(Clock::time_point time) {
    std::unique_lock lock(_mutex);
    return !_stopping.wait_until(lock, time, [this] { return _isStopped.load(); });
}

} // namespace video
