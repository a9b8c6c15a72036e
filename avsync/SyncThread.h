#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <csignal>
#include <new>
#include <string>
#include <utility>

#include "avsync/Controller.h"
#include "avsync/Engine.h"
#include "avsync/Freshness.h"
#include "avsync/LipSyncTypes.h"
#include "avsync/Ntp.h"
#include "avsync/SyncState.h"

namespace velta::zub::avsync::details {

/// The work of a `LipSync`'s thread.
class SyncThread {
public:
    explicit SyncThread(LipSyncOptions options)
        : _options(std::move(options)),
          _state(std::max(_options.deadline, shortest)),
          _engine(_options.socket, _options.deadline, _state) {}

    SyncState& state() { return _state; }

    void run() {
        blockSigpipe();
        Time next = Clock::now();
        do {
            Duration pause = _options.interval;
            unlessOutOfMemory([&] { pause = step(); }, [&] { pause = giveUp(); });
            // After a slow answer, skip the missed readings.
            next = std::max(next + std::max<Duration>(pause, shortest), Clock::now());
        } while (_state.sleepUntil(next));
        unlessOutOfMemory([this] { resetMargin(); }, [] {});
        _engine.disconnect();
        _state.end(_status.marginMs);
    }

private:
    using Clock = std::chrono::steady_clock;
    using Time = Clock::time_point;
    using Duration = Clock::duration;
    using Milliseconds = std::chrono::milliseconds;
    using Service = lipsyncapi::Service;
    using Answer = Engine::Answer;

    static constexpr Milliseconds shortest{1};
    static constexpr Milliseconds shortestPause{100};
    static constexpr Milliseconds longestPause{2000};
    static constexpr Milliseconds longestRefusalPause{1000};
    static constexpr Milliseconds callPause{1000};
    static constexpr std::chrono::seconds marginPause{5};
    static constexpr std::chrono::seconds longestWithoutPicture{1};

    // In this thread only: writing to an engine that has gone must not kill the process.
    static void blockSigpipe() {
        sigset_t signals;
        sigemptyset(&signals);
        sigaddset(&signals, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    }

    // Callers may be compiled without exceptions.
    template <typename Action, typename Otherwise>
    static void unlessOutOfMemory(const Action& action, const Otherwise& otherwise) {
#ifdef __cpp_exceptions
        try {
            action();
        } catch (const std::bad_alloc&) {
            otherwise();
        }
#else
        action();
        static_cast<void>(otherwise);
#endif
    }

    // Needs no memory: the text is short enough to be kept in the string itself.
    Duration giveUp() {
        const Duration pause = reconnect("Out of memory");
        _state.publish(_status, {});
        return pause;
    }

    // Connects if necessary and takes a reading. Returns the pause until the next step.
    Duration step() {
        _status.isSteered = false;
        const Duration pause = read();
        if (_status.message.empty()) {
            _status.message = _refusal;
        }
        _state.publish(_status, _options.onReading);
        return pause;
    }

    Duration read() {
        if (!_engine.isConnected()) {
            if (!_engine.connect()) {
                return pauseAfter(Answer::None);
            }
            restart();
        }
        if (_isInCall && !_isMarginSet && Clock::now() >= _marginRetry) {
            const Answer answer = setMargin(_status.marginMs);
            if (answer != Answer::Success && answer != Answer::Refused) {
                return pauseAfter(answer);
            }
        }
        Engine::Timestamps audio;
        const Answer answer = _engine.getTimestamps(audio);
        if (answer != Answer::Success) {
            return pauseAfter(answer);
        }
        _refusalPause = shortestPause;
        if (!_isInCall) {
            restart();
            return shortest;
        }
        return use(audio);
    }

    // For a new connection or a new call. The next answer tells whether there is a call.
    void restart() {
        _status.isConnected = true;
        _status.message.clear();
        _isInCall = true;
        _isMarginSet = false;
        _marginRetry = Time();
        _refusal.clear();
        _freshness.restart();
        useMargins(true);
    }

    Duration pauseAfter(Answer answer) {
        if (answer == Answer::None) {
            return reconnect(_engine.message());
        }
        _status.message = _engine.message();
        _isInCall = _isInCall && answer != Answer::NotInCall;
        if (answer == Answer::Refused) {
            return std::exchange(_refusalPause, std::min(2 * _refusalPause, longestRefusalPause));
        }
        return answer == Answer::NotInCall ? callPause : _options.interval;
    }

    template <typename Text>
    Duration reconnect(const Text& reason) {
        _engine.disconnect();
        _status.isConnected = _status.isSteered = false;
        _status.message = reason;
        return std::exchange(_reconnectPause, std::min(2 * _reconnectPause, longestPause));
    }

    Answer setMargin(unsigned long ms) {
        const Answer answer = _engine.setMargin(ms);
        if (answer == Answer::Success) {
            _status.marginMs = ms;
            _isMarginSet = true;
            _refusal.clear();
        } else if (answer == Answer::Refused) {
            _marginRetry = Clock::now() + marginPause;
            _refusal = _engine.message();
            useMargins(false);
        }
        return answer;
    }

    // Without margins, the one in force counts as a part of the sound's latency.
    void useMargins(bool areUsed) {
        _usesMargins = areUsed;
        _controller = makeController(areUsed);
    }

    static Controller makeController(bool usesMargins) {
        return {Service::capabilityGranularityMs,
                usesMargins ? Service::capabilityMaxAudioDelayMargin : 0};
    }

    Duration use(const Engine::Timestamps& audio) {
        const Time now = Clock::now();
        switch (_freshness.judge(now, audio)) {
            case Freshness::Verdict::Fresh: return use(now, audio);
            case Freshness::Verdict::Frozen:
                _status.message = "The timestamps do not change";
                break;
            case Freshness::Verdict::Stale: _status.message = "The timestamps are old"; break;
            case Freshness::Verdict::Lagging: return reconnect("The engine's answers are late");
        }
        return _options.interval;
    }

    Duration use(Time now, const Engine::Timestamps& audio) {
        _reconnectPause = shortestPause;
        _status.message.clear();
        ++_status.readings;
        _status.read = now;
        _status.audioLatencyMs =
            ntpMsBetween(audio.audioCaptureTimestamp, audio.audioRenderingTimestamp);
        _status.depthMs = static_cast<double>(audio.jbmCurrentDepth);
        const auto picture = _state.picture();
        if (!picture || now - picture->told > longestWithoutPicture) {
            _status.message = "No picture in the last second";
            return _options.interval;
        }
        _status.isSteered = true;
        _status.pictureLatencyMs = picture->latencyMs;
        _status.skewMs = _status.audioLatencyMs - picture->latencyMs;
        return apply(wanted(now, picture->heldBackMs));
    }

    Correction wanted(Time now, double heldBackMs) {
        if (!_usesMargins && now >= _marginRetry) {
            useMargins(true);
        }
        const Reading reading{_status.audioLatencyMs, _status.pictureLatencyMs, _status.depthMs};
        const unsigned long marginMs = _usesMargins ? _status.marginMs : 0;
        Correction correction = _controller.update(now, reading, {marginMs, heldBackMs});
        if (!_usesMargins) {
            correction.marginMs = _status.marginMs;
        }
        return correction;
    }

    // The pictures wait until the engine has confirmed the margin: both belong together.
    Duration apply(const Correction& correction) {
        const bool isHeard = correction.marginMs != _status.marginMs;
        if (isHeard) {
            const Answer answer = setMargin(correction.marginMs);
            if (answer != Answer::Success) {
                return answer == Answer::Refused ? _options.interval : pauseAfter(answer);
            }
        }
        const bool isSeen = std::abs(correction.pictureDelayMs - _status.pictureDelayMs) > 0.5;
        if (isSeen) {
            _status.pictureDelayMs = correction.pictureDelayMs;
            _state.setPictureDelay(correction.pictureDelayMs);
        }
        _status.changes += isHeard || isSeen ? 1 : 0;
        _status.marginChanges += isHeard ? 1 : 0;
        return _options.interval;
    }

    void resetMargin() {
        if (_options.resetsMargin && _status.marginMs != 0 &&
            (_engine.isConnected() || _engine.connect())) {
            setMargin(0);
        }
    }

    const LipSyncOptions _options;
    SyncState _state;
    Engine _engine;
    Controller _controller = makeController(true);
    bool _usesMargins = true;
    Freshness _freshness;
    LipSyncStatus _status;
    std::string _refusal; // Of the margin; empty if it was not refused.
    bool _isInCall = true;
    bool _isMarginSet = false; // On this connection and in this call.
    Time _marginRetry;
    Milliseconds _reconnectPause = shortestPause;
    Milliseconds _refusalPause = shortestPause;
};

} // namespace velta::zub::avsync::details
