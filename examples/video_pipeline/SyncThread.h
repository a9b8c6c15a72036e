#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "Latest.h"
#include "LatestReading.h"
#include "Pictures.h"
#include "Steering.h"
#include "Watchdog.h"
#include "lipsyncapi/Service.h"

namespace video {

/// Owns the connection to the engine and keeps audio and pictures in step, in a thread of its own.
/// The thread that shows pictures never waits for the engine: it leaves its latest picture here and
/// takes the latest reading.
class SyncThread {
public:
    /// No exchange with the engine may take longer than `deadline`.
    SyncThread(std::string socket, std::chrono::milliseconds deadline);
    ~SyncThread() { stop(); }

    void setPicture(const Picture& picture) { _picture.set(picture); }
    std::optional<Reading> reading() const { return _reading.get(); }

    /// Ends the thread, even during an exchange with a silent engine.
    void stop();

private:
    using Clock = Reading::Clock;
    using Service = velta::zub::lipsyncapi::Service;

    void run();
    bool connect();
    void readUntilFailure();
    bool read();
    bool steer(const Reading& reading, const Picture& picture);
    bool setMargin();

    template <typename Exchange>
    bool succeeds(const Exchange& exchange);
    void report(const std::string& state);
    bool sleepUntil(Clock::time_point time);

    static constexpr std::chrono::milliseconds shortestPause{100};
    static constexpr std::chrono::milliseconds longestPause{2000};

    const std::string _socket;
    const std::chrono::milliseconds _deadline;
    Latest<Picture> _picture;
    LatestReading _reading;
    Steering _steering{Service::capabilityGranularityMs, Service::capabilityMaxAudioDelayMargin};
    std::chrono::milliseconds _pause = shortestPause;
    std::string _state;
    std::atomic<bool> _isStopped{false};
    std::mutex _mutex;
    std::condition_variable _stopping;

    Service _service;
    Watchdog _watchdog;  // After the service that it cancels.
    std::thread _thread; // Last: it uses the others.
};

} // namespace video
